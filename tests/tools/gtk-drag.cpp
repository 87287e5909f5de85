// A GTK window that is dragged from, like a file manager's or a browser's, or dropped on.
//
//   gtk-drag source X Y [--hang] [--promise HOW NAME CONTENTS] [TARGET=TEXT | TARGET@FILE]...
//   gtk-drag target X Y
//
// It lies at (X, Y), 100 x 100 device pixels. A source offers each TARGET (an X11 name such as text/uri-list, image/png
// or UTF8_STRING) as the given text or the bytes of a file, and a promised file by the Direct Save Protocol. With
// --hang it stops itself when it is first asked for data. HOW it keeps its promise:
//
//   fails    says so, as Chromium does            late     says that it has, and writes only then, as Firefox does
//   silent   never answers                        several  says that it has, and writes the file, another and a folder
//   empty    leaves an empty file                          when the drag is over, as File Roller does
//   slow     writes for eleven seconds, then answers
//   swaps    puts a link to the folder CONTENTS in the place of the one that it should write in
//
// Lines on standard output: "ready"; of a source for each drag "drag-begin", "data TARGET" for what was asked for,
// "delete" if it is told to delete what was moved, "drag-failed RESULT" (GTK's number), and "drag-end ACTION", with
// what became of the promise ("kept" or "void") if there was one; of a target for each dropped file "uri URI" and
// "bytes CONTENTS".

#include <gtk/gtk.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {
constexpr char promiseTarget[] = "XdndDirectSave0";

struct Offer {
    bool hang = false;
    std::string promise;  // how it goes; empty for none
    std::string promisedName, promisedContents, promisedPath;
    std::vector<std::pair<std::string, std::string>> forms;
};

std::string contentsOf(const char* file) {
    std::ifstream bytes(file, std::ios::binary);
    if (!bytes) std::exit(2);
    return {std::istreambuf_iterator<char>(bytes), {}};
}

Offer offerOf(char** argument) {
    Offer offer;
    for (; *argument; ++argument) {
        const std::string text = *argument;
        if (text == "--hang") {
            offer.hang = true;
        } else if (text == "--promise" && argument[1] && argument[2] && argument[3]) {
            offer.promise = *++argument;
            offer.promisedName = *++argument;
            offer.promisedContents = *++argument;
        } else {
            // The target's own parameter is no separator, as in "text/plain;charset=utf-8=hello".
            const std::string parameter = ";charset=";
            const auto place = text.find(parameter);
            const auto sign = text.find_first_of("=@", place == std::string::npos ? 0 : place + parameter.size());
            if (sign == std::string::npos) std::exit(2);
            const std::string value = text.substr(sign + 1);
            offer.forms.emplace_back(text.substr(0, sign), text[sign] == '@' ? contentsOf(value.c_str()) : value);
        }
    }
    return offer;
}

GdkAtom atom(const char* name) {
    return gdk_atom_intern(name, false);
}

std::string promisedUri(GdkDragContext* context) {
    guchar* bytes = nullptr;
    gint length = 0;
    gdk_property_get(gdk_drag_context_get_source_window(context), atom(promiseTarget), atom("text/plain"), 0, 4096,
                     false, nullptr, nullptr, &length, &bytes);
    std::string result(reinterpret_cast<char*>(bytes), bytes ? size_t(length) : 0);
    g_free(bytes);
    return result;
}

void setPromise(GdkDragContext* context, const std::string& name) {
    gdk_property_change(gdk_drag_context_get_source_window(context), atom(promiseTarget), atom("text/plain"), 8,
                        GDK_PROP_MODE_REPLACE, reinterpret_cast<const guchar*>(name.data()), gint(name.size()));
}

void began(GtkWidget*, GdkDragContext* context, Offer* offer) {
    if (!offer->promise.empty()) setPromise(context, offer->promisedName);
    std::printf("drag-begin\n");
}

void append(const std::string& path, const std::string& contents) {
    std::ofstream(path, std::ios::binary | std::ios::app) << contents;
}

std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

gboolean writeLate(gpointer data) {
    const Offer& offer = *static_cast<Offer*>(data);
    append(offer.promisedPath, offer.promisedContents);
    if (offer.promise == "several") {
        const std::string folder = folderOf(offer.promisedPath);
        append(folder + "/another.txt", "more");
        g_mkdir_with_parents((folder + "/folder/inner").c_str(), 0700);
        append(folder + "/folder/inner/third.txt", "most");
    }
    return false;
}

bool keepPromise(Offer& offer) {
    const std::string& how = offer.promise;
    if (how == "fails") return false;
    // A loop within the loop: the program lives on, but this answer never goes out.
    if (how == "silent") g_main_loop_run(g_main_loop_new(nullptr, false));
    if (how == "swaps") {
        const std::string folder = folderOf(offer.promisedPath);
        return rmdir(folder.c_str()) == 0 && symlink(offer.promisedContents.c_str(), folder.c_str()) == 0;
    }
    if (how == "late" || how == "empty") append(offer.promisedPath, "");
    if (how == "late") g_timeout_add(300, writeLate, &offer);
    for (int i = 0; how == "slow" && i < 22; ++i) {
        append(offer.promisedPath, offer.promisedContents);
        g_usleep(G_USEC_PER_SEC / 2);
    }
    return true;
}

void answerPromise(GdkDragContext* context, GtkSelectionData* answer, Offer& offer) {
    char* path = g_filename_from_uri(promisedUri(context).c_str(), nullptr, nullptr);
    offer.promisedPath = path ? path : "";
    g_free(path);
    const bool kept = !offer.promisedPath.empty() && keepPromise(offer);
    gtk_selection_data_set(answer, gtk_selection_data_get_target(answer), 8,
                           reinterpret_cast<const guchar*>(kept ? "S" : "F"), 1);
}

void asked(GtkWidget*, GdkDragContext* context, GtkSelectionData* answer, guint number, guint, Offer* offer) {
    char* target = gdk_atom_name(gtk_selection_data_get_target(answer));
    std::printf("data %s\n", target);
    g_free(target);
    if (offer->hang) raise(SIGSTOP);
    if (number == offer->forms.size()) return answerPromise(context, answer, *offer);
    const std::string& bytes = offer->forms[number].second;
    gtk_selection_data_set(answer, gtk_selection_data_get_target(answer), 8,
                           reinterpret_cast<const guchar*>(bytes.data()), gint(bytes.size()));
}

void ended(GtkWidget*, GdkDragContext* context, Offer* offer) {
    if (offer->promise == "several") g_timeout_add(300, writeLate, offer);
    const GdkDragAction action = gdk_drag_context_get_selected_action(context);
    const char* name = action == GDK_ACTION_COPY ? "copy" : action == GDK_ACTION_MOVE ? "move" : "none";
    if (offer->promise.empty())
        std::printf("drag-end %s\n", name);
    else
        std::printf("drag-end %s %s\n", name, promisedUri(context).empty() ? "void" : "kept");
}

gboolean failed(GtkWidget*, GdkDragContext*, GtkDragResult result) {
    std::printf("drag-failed %d\n", int(result));
    return true;  // no picture that flies back
}

void makeSource(GtkWidget* window, Offer& offer) {
    std::vector<GtkTargetEntry> targets;
    for (auto& form : offer.forms) targets.push_back({form.first.data(), 0, guint(targets.size())});
    std::string promise = promiseTarget;
    if (!offer.promise.empty()) targets.push_back({promise.data(), 0, guint(targets.size())});
    gtk_drag_source_set(window, GDK_BUTTON1_MASK, targets.data(), gint(targets.size()),
                        GdkDragAction(GDK_ACTION_COPY | GDK_ACTION_MOVE));
    g_signal_connect(window, "drag-begin", G_CALLBACK(began), &offer);
    g_signal_connect(window, "drag-data-get", G_CALLBACK(asked), &offer);
    g_signal_connect(window, "drag-data-delete", G_CALLBACK(+[] { std::printf("delete\n"); }), nullptr);
    g_signal_connect(window, "drag-failed", G_CALLBACK(failed), nullptr);
    g_signal_connect(window, "drag-end", G_CALLBACK(ended), &offer);
}

void received(GtkWidget*, GdkDragContext*, gint, gint, GtkSelectionData* data) {
    char** uris = gtk_selection_data_get_uris(data);
    for (char** uri = uris; uri && *uri; ++uri) {
        char* path = g_filename_from_uri(*uri, nullptr, nullptr);
        std::printf("uri %s\nbytes %s\n", *uri, path ? contentsOf(path).c_str() : "");
        g_free(path);
    }
    g_strfreev(uris);
}

void makeTarget(GtkWidget* window) {
    char type[] = "text/uri-list";
    const GtkTargetEntry target{type, 0, 0};
    gtk_drag_dest_set(window, GTK_DEST_DEFAULT_ALL, &target, 1, GDK_ACTION_COPY);
    g_signal_connect(window, "drag-data-received", G_CALLBACK(received), nullptr);
}
}  // namespace

int main(int argc, char** argv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    gdk_set_allowed_backends("x11");
    gtk_init(&argc, &argv);
    if (argc < 4) return 2;
    GtkWidget* window = gtk_window_new(GTK_WINDOW_POPUP);
    gtk_window_set_default_size(GTK_WINDOW(window), 100, 100);
    gtk_window_move(GTK_WINDOW(window), std::atoi(argv[2]), std::atoi(argv[3]));
    Offer offer = offerOf(argv + 4);
    if (argv[1] == std::string("source"))
        makeSource(window, offer);
    else
        makeTarget(window);
    g_signal_connect(window, "map-event", G_CALLBACK(+[](GtkWidget*) -> gboolean {
                         std::printf("ready\n");
                         return false;
                     }),
                     nullptr);
    gtk_widget_show(window);
    gtk_main();
}
