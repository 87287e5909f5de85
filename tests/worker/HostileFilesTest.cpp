#include <gmock/gmock.h>

#include "Images.h"

namespace {

/// The code of the failure in all modes and as a thumbnail; 0 for a success, -1 if they differ.
int code(const Folder& folder, const QByteArray& name) {
    const auto thumbnail = folder.thumbnail(name, 96);
    const auto* why = std::get_if<Failure>(&thumbnail);
    const int code = why ? why->code : 0;
    for (const auto mode : kModes)
        if (folder.chew(name, mode).value_or(Failure{}).code != code) return -1;
    return code;
}

constexpr int kDone = 0, kCannotOpen = 1, kCannotFinish = 3;

/// `header` is the width, the height, how colours are stored and a checksum, in hexadecimal digits.
QByteArray png(const char* header) {
    return QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16) + QByteArray::fromHex(header) +
           QByteArray("\0\0\x03\xe8IDAT", 8) + QByteArray(1004, 'x');
}

QByteArray bmpOfSize(quint32 width, quint32 height) {
    return bmp(40, width, height, 24, 0, QByteArray(2000, '\0'));
}

TEST(HostileFiles, AreNotPictures) {
    const std::pair<const char*, QByteArray> cases[] = {
        {"nothing", ""},
        {"svg", "<?xml version=\"1.0\"?><svg xmlns=\"http://www.w3.org/2000/svg\" width=\"9\" height=\"9\"/>"},
        {"ppm", "P6 1 1 255 abc"},
        {"png bomb", png("0000ea60 0000ea60 0802000000 0fb0e215")},
        {"wide png", png("00011170 00000001 0802000000 7d21ea1c")},
        {"huge gif", QByteArray("GIF89a\xff\xff\xff\xff\0\0\0,\0\0\0\0\xff\xff\xff\xff\0\x02\x02\x4c\x01\0;", 29)},
        {"huge bmp", bmpOfSize(0x7fffffff, 0x7fffffff)},
        {"bmp bomb", bmpOfSize(65000, 7000)},
        {"bmp that breaks off", bmpOfSize(100, 100)},
        {"bmp of the lowest height", bmpOfSize(100, 0x80000000)},
        {"bmp with the top first that breaks off", bmpOfSize(100, quint32(-100))},
        {"bmp whose runs break off", bmp(40, 4, 4, 8, 1, QByteArray(8, '\0') + QByteArray("\x04\x01\0\0\x04", 5), 2)},
        {"bmp with half a mask", bmp(56, 4, 4, 32, 3, QByteArray(6, '\0'))},
    };
    const Folder folder;
    for (const auto& [what, bytes] : cases) {
        save(folder / "a.png", bytes);
        EXPECT_EQ(code(folder, "a.png"), kCannotOpen) << what;
    }
    // Nor could other decoders have been asked.
    save(folder / "a.ppm", QByteArray("P6 1 1 255 abc"));
    EXPECT_THROW(VImage::ppmload((folder / "a.ppm").constData()), vips::VError);
}

TEST(HostileFiles, ThatBreakOffFail) {
    // Noise, so that all of the file matters.
    const VImage noise = (quarters(300, 300) + VImage::gaussnoise(300, 300, VImage::option()->set("sigma", 20)))
                             .cast(VIPS_FORMAT_UCHAR)
                             .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
    const Folder folder;
    for (const QByteArray kind : kKinds) {
        const QByteArray name = "a." + kind;
        save(folder / name, noise);
        const QByteArray whole = load(folder / name);
        for (int sixteenth = 0; sixteenth < 16; ++sixteenth) {
            save(folder / name, whole.left(whole.size() * sixteenth / 16));
            EXPECT_THAT(code(folder, name), testing::AnyOf(kCannotOpen, kCannotFinish))
                << kind.toStdString() << sixteenth;
        }
        save(folder / name, whole);
        EXPECT_EQ(code(folder, name), kDone) << kind.toStdString();
    }
}

TEST(HostileFiles, WithBrokenProfilesAreStillPictures) {
    const VImage rgb = quarters(30, 30);
    const VImage cmyk = rgb.icc_transform("cmyk", VImage::option()->set("input_profile", "srgb"));
    const QByteArray whole = iccProfile();
    QByteArray damaged = whole;
    std::fill(damaged.begin() + 132, damaged.begin() + 200, '\xee');
    const Folder folder;
    for (const QByteArray& profile : {QByteArray("no profile at all"), whole.left(whole.size() / 2), damaged, whole}) {
        for (const VImage& colours : {rgb, rgb.colourspace(VIPS_INTERPRETATION_B_W), cmyk}) {
            const VImage image = colours.copy();
            setBlob(image, VIPS_META_ICC_NAME, profile);
            image.jpegsave((folder / "a.jpg").constData());
            EXPECT_EQ(code(folder, "a.jpg"), kDone) << profile.size() << " " << image.interpretation();
        }
    }
}

}  // namespace
