#pragma once
// Owners that release GLib and GTK objects at scope end, on every exit path.
#include <gtk/gtk.h>

#include <memory>

// One reference to a GObject.
struct GObjectUnref {
  void operator()(gpointer object) const {
    if (object) g_object_unref(object);
  }
};

template <typename T>
using GObjectPtr = std::unique_ptr<T, GObjectUnref>;

// A toplevel widget such as a modal dialog: GTK keeps toplevels alive, so
// the owner destroys it rather than dropping a reference.
struct WidgetDestroy {
  void operator()(GtkWidget* widget) const {
    if (widget) gtk_widget_destroy(widget);
  }
};

using DialogPtr = std::unique_ptr<GtkWidget, WidgetDestroy>;

// A string that GLib allocated for the caller.
struct GFree {
  void operator()(gchar* text) const { g_free(text); }
};

using GCharPtr = std::unique_ptr<gchar, GFree>;
