/* The smallest GTK 3 program built from a window description: one label in a
 * window. The start-up and memory floor that logmgr is compared with. */
#include <gtk/gtk.h>

static const char* kDescription =
    "<interface>"
    "  <object class=\"GtkWindow\" id=\"window\">"
    "    <property name=\"title\">Minimal window</property>"
    "    <child>"
    "      <object class=\"GtkLabel\">"
    "        <property name=\"visible\">True</property>"
    "        <property name=\"label\">A minimal GTK 3 window.</property>"
    "      </object>"
    "    </child>"
    "  </object>"
    "</interface>";

int main(void) {
  gtk_init(NULL, NULL);
  GtkBuilder* builder = gtk_builder_new_from_string(kDescription, -1);
  GtkWidget* window = GTK_WIDGET(gtk_builder_get_object(builder, "window"));
  g_signal_connect(window, "delete-event", G_CALLBACK(gtk_main_quit), NULL);
  gtk_widget_show_all(window);
  gtk_main();
  g_object_unref(builder);
  return 0;
}
