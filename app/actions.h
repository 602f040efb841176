#pragma once
// The action buttons: each label with the hint that says what the button does,
// one width for every label they carry, and where the keyboard focus goes when
// one of them is hidden.
#include <gtk/gtk.h>

#include <initializer_list>

// The hints beside the buttons, translated.
namespace hints {
const char* Start();
const char* Stop();
const char* Save();
const char* View();
const char* CollectExisting();
}  // namespace hints

// A hint is also its button's accessible description, so a screen reader
// tells what the button does together with its name.
void Describe(GtkWidget* button, const char* hint);
void SetAction(GtkWidget* button, const char* label, const char* hint);

// Every button as wide as the widest label any of them can carry in the
// active language, so the hint column stays put between states. Measured
// again whenever a button's style changes (the style sheet, a theme, a font).
void SizeActionButtons(std::initializer_list<GtkWidget*> buttons);

// Hiding the focused widget leaves its window with no focus at all; this
// gives it to control then. Focus on a shown widget stays where it is.
void KeepFocusShown(GtkWidget* control);
