// The main window: built from the description below the install root, styled,
// connected, then the toolkit's loop runs until the window is closed.
#include <string>

#include "app/actions.h"
#include "app/app.h"
#include "app/constants.h"
#include "app/gobject_ptr.h"
#include "app/i18n.h"

using namespace constants;

namespace {

// The style sheet must win over the theme and the application's own settings.
constexpr guint kStyleSheetPriority = GTK_STYLE_PROVIDER_PRIORITY_USER;

GtkWidget* Lookup(GtkBuilder* builder, const char* id) {
  return GTK_WIDGET(gtk_builder_get_object(builder, id));
}

std::string UnderRoot(const App& app, std::string_view relative) {
  return app.installRoot.string() + std::string(relative);
}

void LookUpWidgets(App& app) {
  app.topText = Lookup(app.builder, "top_text");
  app.spinner = Lookup(app.builder, "spinner");
  app.logCollectionText = Lookup(app.builder, "log_collection");
  app.lastLogLabel = Lookup(app.builder, "last_log");
  app.stopText = Lookup(app.builder, "stop_text");
  app.collectExistingText = Lookup(app.builder, "collect_existing_text");
  app.saveButton = Lookup(app.builder, "save_button");
  app.startStopButton = Lookup(app.builder, "start_stop_button");
  app.ruler = Lookup(app.builder, "ruler");
  app.existingLogButton = Lookup(app.builder, "existing_log");
}

void LoadSpinner(const App& app) {
  // A load error leaves the image empty; the busy text still tells the state.
  GObjectPtr<GdkPixbufAnimation> animation(
      gdk_pixbuf_animation_new_from_file(UnderRoot(app, kSpinnerFile).c_str(), nullptr));
  if (animation) gtk_image_set_from_animation(GTK_IMAGE(app.spinner), animation.get());
}

void SetWindowIcon(const App& app, GtkWidget* window) {
  GObjectPtr<GdkPixbuf> icon(gdk_pixbuf_new_from_file(UnderRoot(app, kIconFile).c_str(), nullptr));
  if (icon) gtk_window_set_icon(GTK_WINDOW(window), icon.get());
}

void ApplyStyleSheet(const App& app) {
  GObjectPtr<GtkCssProvider> provider(gtk_css_provider_new());
  gtk_css_provider_load_from_path(provider.get(), UnderRoot(app, kCssFile).c_str(), nullptr);
  gtk_style_context_add_provider_for_screen(gdk_screen_get_default(), GTK_STYLE_PROVIDER(provider.get()),
                                            kStyleSheetPriority);
}

void StyleButtons(const App& app) {
  // Widget names equal to the ids let the style sheet address each button.
  gtk_widget_set_name(app.startStopButton, "start_stop_button");
  gtk_widget_set_name(app.saveButton, "save_button");
  gtk_widget_set_name(app.existingLogButton, "existing_log");
}

void AddCircularClass(const App& app) {
  for (GtkWidget* button : {app.saveButton, app.startStopButton, app.existingLogButton})
    gtk_style_context_add_class(gtk_widget_get_style_context(button), "circular");
}

// As the window description gives the buttons: a run can start, its archive
// is not saved yet.
void DescribeActions(const App& app) {
  Describe(app.startStopButton, hints::Start());
  Describe(app.saveButton, hints::Save());
  Describe(app.existingLogButton, hints::CollectExisting());
}

void ConnectSignals(const App& app, GtkWidget* window) {
  g_signal_connect(app.startStopButton, "clicked", G_CALLBACK(OnStartStopClicked), window);
  g_signal_connect(app.saveButton, "clicked", G_CALLBACK(OnSaveClicked), window);
  g_signal_connect(app.existingLogButton, "clicked", G_CALLBACK(OnCollectExistingClicked), window);
  g_signal_connect(window, "delete_event", G_CALLBACK(OnMainWindowDelete), nullptr);
}

}  // namespace

void App::Run() {
  gtk_init(nullptr, nullptr);
  builder = gtk_builder_new();
  collecting = 0;
  saveButtonIsView = 0;
  gtk_builder_add_from_file(builder, UnderRoot(*this, kGladeFile).c_str(), nullptr);

  GtkWidget* window = Lookup(builder, "logging");
  // Without a window there is nothing the user could close the loop with.
  if (window == nullptr) return;
  gtk_window_set_title(GTK_WINDOW(window), _("Norvex Log Collection Utility"));
  gtk_widget_show_all(window);

  LookUpWidgets(*this);
  LoadSpinner(*this);
  StyleButtons(*this);
  SetWindowIcon(*this, window);
  AddCircularClass(*this);
  ApplyStyleSheet(*this);
  SizeActionButtons({startStopButton, saveButton, existingLogButton});
  DescribeActions(*this);
  ShowInitialState();
  ConnectSignals(*this, window);
  gtk_main();
}

void App::ShowInitialState() {
  for (GtkWidget* widget : {lastLogLabel, logCollectionText, spinner, saveButton, ruler}) gtk_widget_hide(widget);
}
