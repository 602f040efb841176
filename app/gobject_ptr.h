#pragma once
// Owns one reference to a GObject and drops it at scope end.
#include <glib-object.h>

#include <memory>

struct GObjectUnref {
  void operator()(gpointer object) const {
    if (object) g_object_unref(object);
  }
};

template <typename T>
using GObjectPtr = std::unique_ptr<T, GObjectUnref>;
