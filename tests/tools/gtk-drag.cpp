// A GTK window that is dragged from, like a file manager's or a browser's, or dropped on.
//
//   gtk-drag source X Y [--hang] [--promise HOW NAME CONTENTS] [TARGET=TEXT]...
//   gtk-drag target X Y
//
// It lies at (X, Y), 100 x 100 device pixels. A source offers each TARGET (an X11 name such as text/uri-list, image/png
// or UTF8_STRING) as the given text, and a promised file by the Direct Save Protocol. With --hang it stops itself when
// it is first asked for data. HOW it keeps its promise:
//
//   fails    says so, as Chromium does            late     says that it has, and writes only then, as Firefox does
//   silent   never answers                        after    says so, and writes after the drag, as File Roller does
//   empty    leaves an empty file                 slow     writes for eleven seconds, then answers
//   swaps    puts a link to the folder CONTENTS in the place of the one that it should write in
//
// Lines on standard output: "ready"; of a source for each drag "drag-begin", "data TARGET" for what was asked for,
// "delete" if it is told to delete what was moved, and "drag-end", with "copy" if it was copied and "void" if its
// promise was declined; of a target for each dropped file "uri URI" and "bytes CONTENTS".

#include <gtk/gtk.h>
#include <signal.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace {
constexpr char promiseTarget[] = "XdndDirectSave0";

struct Offer {
    bool hang = false;
    std::string promise;  // how it goes; empty for none
    std::string promisedName, promisedContents;
    std::filesystem::path promisedPath;
    std::vector<std::pair<std::string, std::string>> forms;
};

Offer offerOf(char** argument) {
    Offer offer;
    for (; *argument; ++argument) {
        const std::string text = *argument;
        const auto sign = text.find('=');
        if (text == "--hang") {
            offer.hang = true;
        } else if (text == "--promise" && argument[1] && argument[2] && argument[3]) {
            offer.promise = *++argument;
            offer.promisedName = *++argument;
            offer.promisedContents = *++argument;
        } else if (sign != std::string::npos) {
            offer.forms.emplace_back(text.substr(0, sign), text.substr(sign + 1));
        } else {
            std::exit(2);
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

/// Empty for what is not a file's.
std::string pathOf(const std::string& uri) {
    char* path = g_filename_from_uri(uri.c_str(), nullptr, nullptr);
    std::string result = path ? path : "";
    g_free(path);
    return result;
}

void began(GtkWidget*, GdkDragContext* context, Offer* offer) {
    const std::string& name = offer->promisedName;
    if (!offer->promise.empty())
        gdk_property_change(gdk_drag_context_get_source_window(context), atom(promiseTarget), atom("text/plain"), 8,
                            GDK_PROP_MODE_REPLACE, reinterpret_cast<const guchar*>(name.data()), gint(name.size()));
    std::cout << "drag-begin" << std::endl;
}

void append(const std::filesystem::path& path, const std::string& contents) {
    std::ofstream(path, std::ios::binary | std::ios::app) << contents;
}

gboolean writeLate(gpointer data) {
    const Offer& offer = *static_cast<Offer*>(data);
    append(offer.promisedPath, offer.promisedContents);
    return false;
}

bool keepPromise(Offer& offer) {
    const std::string& how = offer.promise;
    if (how == "fails") return false;
    // A loop within the loop: the program lives on, but this answer never goes out.
    if (how == "silent") g_main_loop_run(g_main_loop_new(nullptr, false));
    if (how == "swaps") {
        std::filesystem::remove(offer.promisedPath.parent_path());
        std::filesystem::create_directory_symlink(offer.promisedContents, offer.promisedPath.parent_path());
    }
    if (how == "late" || how == "empty") append(offer.promisedPath, "");
    if (how == "late") g_timeout_add(300, writeLate, &offer);
    for (int i = 0; how == "slow" && i < 22; ++i) {
        append(offer.promisedPath, offer.promisedContents);
        g_usleep(G_USEC_PER_SEC / 2);
    }
    return true;
}

void asked(GtkWidget*, GdkDragContext* context, GtkSelectionData* answer, guint number, guint, Offer* offer) {
    const GdkAtom target = gtk_selection_data_get_target(answer);
    char* name = gdk_atom_name(target);
    std::cout << "data " << name << std::endl;
    g_free(name);
    if (offer->hang) raise(SIGSTOP);
    std::string bytes;
    if (number < offer->forms.size()) {
        bytes = offer->forms[number].second;
    } else {
        offer->promisedPath = pathOf(promisedUri(context));
        bytes = std::string(1, !offer->promisedPath.empty() && keepPromise(*offer) ? 'S' : 'F');
    }
    gtk_selection_data_set(answer, target, 8, reinterpret_cast<const guchar*>(bytes.data()), gint(bytes.size()));
}

void ended(GtkWidget*, GdkDragContext* context, Offer* offer) {
    if (offer->promise == "after") g_timeout_add(300, writeLate, offer);
    const bool copied = gdk_drag_context_get_selected_action(context) == GDK_ACTION_COPY;
    const bool declined = !offer->promise.empty() && promisedUri(context).empty();
    std::cout << "drag-end" << (copied ? " copy" : "") << (declined ? " void" : "") << std::endl;
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
    g_signal_connect(window, "drag-data-delete", G_CALLBACK(+[] { std::cout << "delete" << std::endl; }), nullptr);
    // No picture that flies back.
    g_signal_connect(window, "drag-failed", G_CALLBACK(+[]() -> gboolean { return true; }), nullptr);
    g_signal_connect(window, "drag-end", G_CALLBACK(ended), &offer);
}

void received(GtkWidget*, GdkDragContext*, gint, gint, GtkSelectionData* data) {
    char** uris = gtk_selection_data_get_uris(data);
    for (char** uri = uris; uri && *uri; ++uri)
        std::cout << "uri " << *uri << "\nbytes " << std::ifstream(pathOf(*uri)).rdbuf() << std::endl;
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
    g_signal_connect(window, "map-event", G_CALLBACK(+[]() -> gboolean {
                         std::cout << "ready" << std::endl;
                         return false;
                     }),
                     nullptr);
    gtk_widget_show(window);
    gtk_main();
}
