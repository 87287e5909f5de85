#pragma once

#include <QLatin1String>
#include <array>

/// The MIME types that are accepted in a drop; best first within each kind.
namespace DropTypes {

inline constexpr std::array kAddresses{QLatin1StringView("text/uri-list"), QLatin1StringView("text/x-moz-url"),
                                       QLatin1StringView("_NETSCAPE_URL")};

struct Image {
    QLatin1StringView type, extension;
};
inline constexpr std::array kImages{Image{QLatin1StringView("image/png"), QLatin1StringView("png")},
                                    Image{QLatin1StringView("image/jpeg"), QLatin1StringView("jpg")},
                                    Image{QLatin1StringView("image/tiff"), QLatin1StringView("tiff")},
                                    Image{QLatin1StringView("image/heic"), QLatin1StringView("heic")}};

inline constexpr QLatin1StringView kText("text/plain;charset=utf-8");
/// The bytes of a promised file.
inline constexpr QLatin1StringView kPromisedBytes("application/octet-stream");

}  // namespace DropTypes
