#pragma once

/// For applications that run a main loop of GLib, those of GTK among them. Needs GLib.

#include <functional>
#include <memory>
#include <utility>

#include <velmora/velmora.h>

#include <glib.h>

namespace velmora::hosts {

/// Has callbacks run in that main context, the default one when it is null, whoever iterates it. It is held
/// until another function is set.
inline void useGlib(GMainContext* context = nullptr) {
    const std::shared_ptr<GMainContext> held(
        context != nullptr ? g_main_context_ref(context) : g_main_context_ref(g_main_context_default()),
        &g_main_context_unref);
    Velmora::setMainQueue([held](std::function<void()> work) {
        using Work = std::function<void()>;
        // A source of its own for each: g_main_context_invoke would run it on the calling thread while no
        // loop runs.
        GSource* source = g_idle_source_new();
        g_source_set_priority(source, G_PRIORITY_DEFAULT);
        g_source_set_callback(
            source,
            [](gpointer data) -> gboolean {
                (*static_cast<Work*>(data))();
                return G_SOURCE_REMOVE;
            },
            std::make_unique<Work>(std::move(work)).release(),
            [](gpointer data) { std::unique_ptr<Work>(static_cast<Work*>(data)).reset(); });
        g_source_attach(source, held.get());
        g_source_unref(source);
    });
}

}  // namespace velmora::hosts
