#pragma once

#include <QString>
#include <algorithm>
#include <iterator>

/// A program that may play music: the name that it is asked by, and its identifier.
struct Application {
    QString name, identifier;
};

// In the order in which they are asked.

inline const Application playerApps[] = {
    {QStringLiteral("Spotify"), QStringLiteral("com.spotify.client")},
    {QStringLiteral("Music"), QStringLiteral("com.apple.Music")},
};

inline const Application browserApps[] = {
    {QStringLiteral("Google Chrome"), QStringLiteral("com.google.Chrome")},
    {QStringLiteral("Brave Browser"), QStringLiteral("com.brave.Browser")},
    {QStringLiteral("Arc"), QStringLiteral("company.thebrowser.Browser")},
    {QStringLiteral("Microsoft Edge"), QStringLiteral("com.microsoft.edgemac")},
    {QStringLiteral("Safari"), QStringLiteral("com.apple.Safari")},
};

inline bool isBrowser(const QString& name) {
    return std::ranges::any_of(browserApps, [&](const Application& browser) { return browser.name == name; });
}

/// Empty for an unknown name.
inline QString identifierOf(const QString& browser) {
    const auto* found = std::ranges::find(browserApps, browser, &Application::name);
    return found == std::end(browserApps) ? QString() : found->identifier;
}
