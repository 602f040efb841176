// The smallest GTK 3 window built from a description: one label in a window.
// It is the baseline that logmgr's idle memory is compared with.
#include <gtk/gtk.h>

namespace {

constexpr const char* kDescription = R"(<interface>
  <object class="GtkWindow" id="window">
    <property name="title">Minimal window</property>
    <child>
      <object class="GtkLabel">
        <property name="visible">True</property>
        <property name="label">A minimal GTK 3 window.</property>
        <property name="margin">24</property>
      </object>
    </child>
  </object>
</interface>)";

}  // namespace

int main() {
  gtk_init(nullptr, nullptr);
  GtkBuilder* builder = gtk_builder_new_from_string(kDescription, -1);
  GtkWidget* window = GTK_WIDGET(gtk_builder_get_object(builder, "window"));
  g_signal_connect(window, "delete-event", G_CALLBACK(gtk_main_quit), nullptr);
  gtk_widget_show_all(window);
  gtk_main();
  g_object_unref(builder);
  return 0;
}
