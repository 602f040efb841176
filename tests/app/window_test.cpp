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

TEST_F(WindowShellTest, FirstShowHidesTheRunWidgetsAndKeepsBothActions) {
  RunWindow([this](GtkWidget* window) {
    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(window)), "Norvex Log Collection Utility");
    EXPECT_TRUE(Visible(window));
    for (GtkWidget* hidden : {app_->saveButton, app_->ruler, app_->lastLogLabel, app_->spinner,
                              app_->logCollectionText})
      EXPECT_FALSE(Visible(hidden)) << gtk_buildable_get_name(GTK_BUILDABLE(hidden));
    for (GtkWidget* shown : {app_->topText, app_->startStopButton, app_->stopText, app_->existingLogButton,
                             app_->collectExistingText})
      EXPECT_TRUE(Visible(shown)) << gtk_buildable_get_name(GTK_BUILDABLE(shown));
    EXPECT_EQ(app_->collecting, 0);
    EXPECT_EQ(app_->saveButtonIsView, 0);
  });
}

TEST_F(WindowShellTest, DescriptionTextsMatchTheIdleWording) {
  // The first texts come from the description, later ones from the painters;
  // a user must not see the wording change when nothing happened.
  RunWindow([this](GtkWidget*) {
    EXPECT_EQ(LabelText(app_->startStopButton), "Start collecting logs");
    EXPECT_EQ(LabelText(app_->saveButton), "Save logs");
    EXPECT_EQ(LabelText(app_->existingLogButton), "Collect existing logs");
    EXPECT_EQ(LabelText(app_->stopText), kIdleStopHint);
    EXPECT_EQ(LabelText(app_->collectExistingText), kIdleExistingHint);
    EXPECT_FALSE(LabelText(app_->topText).empty());
    EXPECT_FALSE(LabelText(app_->logCollectionText).empty());
  });
}

TEST_F(WindowShellTest, ImagesStyleSheetAndNamesAreApplied) {
  RunWindow([this](GtkWidget* window) {
    GdkPixbuf* icon = gtk_window_get_icon(GTK_WINDOW(window));
    ASSERT_NE(icon, nullptr);
    EXPECT_EQ(gdk_pixbuf_get_width(icon), 64);
    EXPECT_EQ(gdk_pixbuf_get_height(icon), 64);

    ASSERT_EQ(gtk_image_get_storage_type(GTK_IMAGE(app_->spinner)), GTK_IMAGE_ANIMATION);
    EXPECT_FALSE(gdk_pixbuf_animation_is_static_image(gtk_image_get_animation(GTK_IMAGE(app_->spinner))));

    for (GtkWidget* button : {app_->startStopButton, app_->saveButton, app_->existingLogButton}) {
      const char* id = gtk_buildable_get_name(GTK_BUILDABLE(button));
      EXPECT_STREQ(gtk_widget_get_name(button), id);
      EXPECT_TRUE(gtk_style_context_has_class(gtk_widget_get_style_context(button), "circular")) << id;
    }
    // The sheet addresses the start button by its name; its colour shows it was
    // loaded. The theme fades colours in, so read it with animations off.
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
    gdk_rgba_parse(&expected, "#1f6fc5");
    EXPECT_TRUE(gdk_rgba_equal(background, &expected)) << gdk_rgba_to_string(background);
    gdk_rgba_free(background);
  });
}

TEST_F(WindowShellTest, ClosingTheWindowEndsTheLoopWithoutRestoringAnything) {
  bool quitByClose = false;
  guint guard = 0;
  g_idle_add(
      [](gpointer data) -> gboolean {
        auto* app = static_cast<App*>(data);
        app->collecting = 1;
        GtkWidget* window = GTK_WIDGET(gtk_builder_get_object(app->builder, "logging"));
        GdkEvent* close = gdk_event_new(GDK_DELETE);
        close->any.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(window)));
        gtk_main_do_event(close);
        gdk_event_free(close);
        return G_SOURCE_REMOVE;
      },
      app_.get());
  // Fails the test instead of hanging when the close does not end the loop.
  guard = g_timeout_add_seconds(
      20, [](gpointer) -> gboolean { gtk_main_quit(); return G_SOURCE_REMOVE; }, nullptr);
  app_->Run();
  quitByClose = g_main_context_find_source_by_id(nullptr, guard) != nullptr;
  if (quitByClose) g_source_remove(guard);
  EXPECT_TRUE(quitByClose);
  EXPECT_EQ(app_->collecting, 1);
  EXPECT_FALSE(std::filesystem::exists(Marker()));
}

TEST_F(WindowShellTest, CollectingStateShowsTheBusyLineOnly) {
  RunWindow([this](GtkWidget*) {
    app_->ShowCollectingState();
    EXPECT_TRUE(Visible(app_->spinner));
    EXPECT_TRUE(Visible(app_->logCollectionText));
    for (GtkWidget* hidden : {app_->lastLogLabel, app_->ruler, app_->saveButton, app_->existingLogButton,
                              app_->collectExistingText})
      EXPECT_FALSE(Visible(hidden)) << gtk_buildable_get_name(GTK_BUILDABLE(hidden));
    EXPECT_EQ(LabelText(app_->startStopButton), "Stop collecting logs");
    EXPECT_EQ(LabelText(app_->stopText), "Click \"Stop collecting logs\" after the issue is reproduced.");
  });
}

TEST_F(WindowShellTest, IdleAfterSuccessShowsSaveAndLastSavedButNotTheOtherAction) {
  RunWindow([this](GtkWidget*) {
    app_->ShowCollectingState();
    app_->ShowIdleState(0);
    EXPECT_FALSE(Visible(app_->spinner));
    EXPECT_FALSE(Visible(app_->logCollectionText));
    EXPECT_TRUE(Visible(app_->saveButton));
    EXPECT_TRUE(Visible(app_->ruler));
    EXPECT_TRUE(Visible(app_->lastLogLabel));
    // Kept as the client's tools do it: the other action stays hidden after a good run.
    EXPECT_FALSE(Visible(app_->existingLogButton));
    EXPECT_FALSE(Visible(app_->collectExistingText));
    EXPECT_EQ(LabelText(app_->startStopButton), "Start collecting logs");
    EXPECT_EQ(LabelText(app_->stopText), kIdleStopHint);
    EXPECT_EQ(LabelText(app_->collectExistingText), kIdleExistingHint);
  });
}

TEST_F(WindowShellTest, IdleAfterFailureShowsTheOtherActionWithoutItsHint) {
  RunWindow([this](GtkWidget*) {
    app_->ShowCollectingState();
    app_->ShowIdleState(2);
    EXPECT_TRUE(Visible(app_->existingLogButton));
    EXPECT_FALSE(Visible(app_->collectExistingText));
    EXPECT_FALSE(Visible(app_->saveButton));
    EXPECT_FALSE(Visible(app_->lastLogLabel));
    EXPECT_FALSE(Visible(app_->spinner));
    EXPECT_EQ(LabelText(app_->startStopButton), "Start collecting logs");
  });
}

TEST_F(WindowShellTest, LastSavedLineCarriesTwoBlanksBeforeTheTimestamp) {
  RunWindow([this](GtkWidget*) {
    app_->ShowLastSaved();
    EXPECT_TRUE(Visible(app_->ruler));
    EXPECT_TRUE(Visible(app_->lastLogLabel));
    const std::string shown = LabelText(app_->lastLogLabel);
    EXPECT_EQ(shown, app_->lastSavedText);
    ASSERT_GT(shown.size(), 17u);
    EXPECT_EQ(shown.substr(0, 17), "Last saved log:  ");
    EXPECT_NE(shown[17], ' ');
  });
}

}  // namespace
}  // namespace apptest
