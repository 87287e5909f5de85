// A GTK window that files can be dropped on, like a file manager's.
//
//   gtk-drop-target X Y
//
// It lies at (X, Y), 100 x 100 device pixels. Lines on standard output: "ready"; for each drop "types TYPE...", then
// for each dropped file "uri URI" and "bytes CONTENTS".

#include <gtk/gtk.h>

#include <cstdio>
#include <cstdlib>

namespace {
gboolean dropped(GtkWidget* window, GdkDragContext* context, gint, gint, guint time) {
    std::printf("types");
    for (GList* target = gdk_drag_context_list_targets(context); target; target = target->next) {
        char* name = gdk_atom_name(GDK_POINTER_TO_ATOM(target->data));
        std::printf(" %s", name);
        g_free(name);
    }
    std::printf("\n");
    std::fflush(stdout);
    gtk_drag_get_data(window, context, gdk_atom_intern("text/uri-list", false), time);
    return true;
}

void received(GtkWidget*, GdkDragContext* context, gint, gint, GtkSelectionData* data, guint, guint time) {
    char** uris = gtk_selection_data_get_uris(data);
    for (char** uri = uris; uri && *uri; ++uri) {
        std::printf("uri %s\n", *uri);
        char* bytes = nullptr;
        gsize length = 0;
        char* path = g_filename_from_uri(*uri, nullptr, nullptr);
        if (path && g_file_get_contents(path, &bytes, &length, nullptr)) {
            std::printf("bytes ");
            std::fwrite(bytes, 1, length, stdout);
            std::printf("\n");
        }
        g_free(bytes);
        g_free(path);
    }
    std::fflush(stdout);
    gtk_drag_finish(context, uris != nullptr, false, time);
    g_strfreev(uris);
}
}  // namespace

int main(int argc, char** argv) {
    gdk_set_allowed_backends("x11");
    gtk_init(&argc, &argv);
    if (argc < 3) return 2;
    GtkWidget* window = gtk_window_new(GTK_WINDOW_POPUP);
    gtk_window_set_default_size(GTK_WINDOW(window), 100, 100);
    gtk_window_move(GTK_WINDOW(window), std::atoi(argv[1]), std::atoi(argv[2]));
    char type[] = "text/uri-list";
    GtkTargetEntry target{type, 0, 0};
    gtk_drag_dest_set(window, GtkDestDefaults(GTK_DEST_DEFAULT_MOTION | GTK_DEST_DEFAULT_HIGHLIGHT), &target, 1,
                      GDK_ACTION_COPY);
    g_signal_connect(window, "drag-drop", G_CALLBACK(dropped), nullptr);
    g_signal_connect(window, "drag-data-received", G_CALLBACK(received), nullptr);
    g_signal_connect(window, "map-event", G_CALLBACK(+[](GtkWidget*) -> gboolean {
                         std::puts("ready");
                         std::fflush(stdout);
                         return false;
                     }),
                     nullptr);
    gtk_widget_show(window);
    gtk_main();
}
