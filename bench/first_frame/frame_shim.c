/* Preloaded into a GTK 3 program: when gtk_main starts, every toplevel window
 * gets a handler that, on its first drawn frame, appends the monotonic time in
 * nanoseconds and the peak resident memory (VmHWM, kB) to the file named by
 * FIRST_FRAME_OUT, then ends the main loop. The program itself is unchanged. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <gtk/gtk.h>
#include <stdio.h>
#include <string.h>
#include <time.h>

static long PeakResidentKb(void) {
  FILE* status = fopen("/proc/self/status", "r");
  char line[256];
  long kb = -1;
  while (status != NULL && fgets(line, sizeof line, status) != NULL)
    if (sscanf(line, "VmHWM: %ld kB", &kb) == 1) break;
  if (status != NULL) fclose(status);
  return kb;
}

static gboolean NoteFirstFrame(GtkWidget* widget, cairo_t* cr, gpointer data) {
  static int noted = 0;
  (void)widget, (void)cr, (void)data;
  if (noted++) return FALSE;
  struct timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  const char* path = getenv("FIRST_FRAME_OUT");
  FILE* out = path != NULL ? fopen(path, "a") : NULL;
  if (out != NULL) {
    fprintf(out, "%lld %ld\n", (long long)now.tv_sec * 1000000000LL + now.tv_nsec, PeakResidentKb());
    fclose(out);
  }
  gtk_main_quit();
  return FALSE;
}

void gtk_main(void) {
  void (*real_main)(void) = (void (*)(void))dlsym(RTLD_NEXT, "gtk_main");
  GList* toplevels = gtk_window_list_toplevels();
  for (GList* item = toplevels; item != NULL; item = item->next)
    if (gtk_widget_get_visible(GTK_WIDGET(item->data)))
      g_signal_connect_after(item->data, "draw", G_CALLBACK(NoteFirstFrame), NULL);
  g_list_free(toplevels);
  real_main();
}
