// The main window as App::Run builds it, and the state painters.
#include <gtest/gtest.h>

#include "window_fixture.h"

namespace apptest {
namespace {

constexpr const char* kIdleStopHint =
    "Click \"Start collecting logs\" and then reproduce the issue. This gathers the most recent logs.";
constexpr const char* kIdleExistingHint =
    "Click \"Collect existing logs\" to gather the logs that might have captured the issue from previous "
    "occurrences.";

using WindowShellTest = WindowTest;

void ExpectVisible(std::initializer_list<GtkWidget*> widgets, bool visible) {
  for (GtkWidget* widget : widgets)
    EXPECT_EQ(Visible(widget), visible) << gtk_buildable_get_name(GTK_BUILDABLE(widget));
}

TEST_F(WindowShellTest, FirstShowHidesTheRunWidgetsWithTheIdleWording) {
  RunWindow([this](GtkWidget* window) {
    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(window)), "Norvex Log Collection Utility");
    ExpectVisible({app_->saveButton, app_->ruler, app_->lastLogLabel, app_->spinner, app_->logCollectionText}, false);
    ExpectVisible({window, app_->topText, app_->startStopButton, app_->stopText, app_->existingLogButton,
                   app_->collectExistingText}, true);
    // The description's texts must equal the painters' so nothing changes unprompted.
    EXPECT_EQ(LabelText(app_->startStopButton), "Start collecting logs");
    EXPECT_EQ(LabelText(app_->saveButton), "Save logs");
    EXPECT_EQ(LabelText(app_->existingLogButton), "Collect existing logs");
    EXPECT_EQ(LabelText(app_->stopText), kIdleStopHint);
    EXPECT_EQ(LabelText(app_->collectExistingText), kIdleExistingHint);
  });
}

TEST_F(WindowShellTest, ImagesStyleSheetAndNamesAreApplied) {
  RunWindow([this](GtkWidget* window) {
    GdkPixbuf* icon = gtk_window_get_icon(GTK_WINDOW(window));
    ASSERT_NE(icon, nullptr);
    EXPECT_EQ(gdk_pixbuf_get_width(icon), 64);
    ASSERT_EQ(gtk_image_get_storage_type(GTK_IMAGE(app_->spinner)), GTK_IMAGE_ANIMATION);
    EXPECT_FALSE(gdk_pixbuf_animation_is_static_image(gtk_image_get_animation(GTK_IMAGE(app_->spinner))));
    for (GtkWidget* button : {app_->startStopButton, app_->saveButton, app_->existingLogButton}) {
      EXPECT_STREQ(gtk_widget_get_name(button), gtk_buildable_get_name(GTK_BUILDABLE(button)));
      EXPECT_TRUE(gtk_style_context_has_class(gtk_widget_get_style_context(button), "circular"));
    }
    // The sheet fills the start button with the theme's accent, which no theme
    // gives a plain button; read it with the theme's fade-in turned off.
    GtkSettings* settings = gtk_settings_get_default();
    gboolean animations = TRUE;
    g_object_get(settings, "gtk-enable-animations", &animations, nullptr);
    g_object_set(settings, "gtk-enable-animations", FALSE, nullptr);
    gtk_widget_reset_style(app_->startStopButton);
    GdkRGBA* background = nullptr;
    GtkStyleContext* style = gtk_widget_get_style_context(app_->startStopButton);
    gtk_style_context_get(style, gtk_style_context_get_state(style), "background-color", &background, nullptr);
    g_object_set(settings, "gtk-enable-animations", animations, nullptr);
    ASSERT_NE(background, nullptr);
    GdkRGBA expected;
    ASSERT_TRUE(gtk_style_context_lookup_color(style, "theme_selected_bg_color", &expected));
    EXPECT_TRUE(gdk_rgba_equal(background, &expected)) << gdk_rgba_to_string(background);
    gdk_rgba_free(background);
  });
}

TEST_F(WindowShellTest, PaintersShowEachStatesWidgetsAndTexts) {
  RunWindow([this](GtkWidget*) {
    app_->ShowCollectingState();
    ExpectVisible({app_->spinner, app_->logCollectionText}, true);
    ExpectVisible({app_->lastLogLabel, app_->ruler, app_->saveButton, app_->existingLogButton,
                   app_->collectExistingText}, false);
    EXPECT_EQ(LabelText(app_->startStopButton), "Stop collecting logs");
    EXPECT_EQ(LabelText(app_->stopText), "Click \"Stop collecting logs\" after the issue is reproduced.");

    // Kept as the client's tools do it: the other action stays hidden after a good run.
    app_->ShowIdleState(0);
    ExpectVisible({app_->saveButton, app_->ruler, app_->lastLogLabel}, true);
    ExpectVisible({app_->spinner, app_->logCollectionText, app_->existingLogButton, app_->collectExistingText}, false);
    EXPECT_EQ(LabelText(app_->startStopButton), "Start collecting logs");
    EXPECT_EQ(LabelText(app_->stopText), kIdleStopHint);
    const std::string shown = LabelText(app_->lastLogLabel);
    EXPECT_EQ(shown, app_->lastSavedText);
    EXPECT_TRUE(shown.starts_with("Last saved log:  ") && shown.size() > 17 && shown[17] != ' ') << shown;

    app_->ShowCollectingState();
    app_->ShowIdleState(2);
    ExpectVisible({app_->existingLogButton}, true);
    ExpectVisible({app_->collectExistingText, app_->saveButton, app_->lastLogLabel, app_->spinner}, false);
    EXPECT_EQ(LabelText(app_->startStopButton), "Start collecting logs");
  });
}

}  // namespace
}  // namespace apptest
