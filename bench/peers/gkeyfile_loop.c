// gkeyfile_loop COUNT FOLDER...: reads all entries and units in the folders COUNT times, with the parser that
// desktops use for them.

#include <glib.h>
#include <stdlib.h>

static void read_file(const char* path) {
  GKeyFile* const file = g_key_file_new();
  if (g_key_file_load_from_file(file, path, G_KEY_FILE_NONE, NULL)) {
    const gboolean is_entry = g_str_has_suffix(path, ".desktop");
    g_free(g_key_file_get_locale_string(file, is_entry ? "Desktop Entry" : "Unit",
                                        is_entry ? "Name" : "Description", NULL, NULL));
    g_free(g_key_file_get_string(file, is_entry ? "Desktop Entry" : "Service",
                                 is_entry ? "Exec" : "ExecStart", NULL));
  }
  g_key_file_free(file);
}

int main(int argc, char** argv) {
  const int count = argc > 1 ? atoi(argv[1]) : 1;
  for (int i = 0; i < count; ++i) {
    for (int n = 2; n < argc; ++n) {
      GDir* const folder = g_dir_open(argv[n], 0, NULL);
      const char* name = NULL;
      while (folder && (name = g_dir_read_name(folder))) {
        char* const path = g_build_filename(argv[n], name, NULL);
        if (g_file_test(path, G_FILE_TEST_IS_REGULAR)) read_file(path);
        g_free(path);
      }
      if (folder) g_dir_close(folder);
    }
  }
  return 0;
}
