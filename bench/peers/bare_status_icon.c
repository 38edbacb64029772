// bare_status_icon: the least that a GTK program with a live icon in the tray costs.

#define GDK_DISABLE_DEPRECATION_WARNINGS
#define GLIB_DISABLE_DEPRECATION_WARNINGS
#include <gtk/gtk.h>

enum { pictures = 13, pictureSize = 22, periodSeconds = 15 };

static GdkPixbuf* dials[pictures];
static int shown;

static gboolean showNext(gpointer icon) {
  shown = (shown + 1) % pictures;
  gtk_status_icon_set_from_pixbuf(GTK_STATUS_ICON(icon), dials[shown]);
  return G_SOURCE_CONTINUE;
}

int main(int argc, char** argv) {
  gtk_init(&argc, &argv);
  for (int i = 0; i < pictures; ++i) {
    dials[i] = gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, 8, pictureSize, pictureSize);
    gdk_pixbuf_fill(dials[i], 0xffffff00u + (guint32)(i * 255 / (pictures - 1)));
  }
  GtkStatusIcon* icon = gtk_status_icon_new_from_pixbuf(dials[0]);
  g_timeout_add_seconds(periodSeconds, showNext, icon);
  gtk_main();
  return 0;
}
