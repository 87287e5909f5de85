#include <gmock/gmock.h>
#include <malloc.h>

#include <set>

#include "Images.h"

namespace {

using testing::Contains;
using testing::ContainsRegex;
using testing::Not;
using testing::Pointwise;

constexpr ChewMode kModes[] = {ChewMode::jpeg, ChewMode::png, ChewMode::smaller};

/// The path of the new file.
QByteArray chewed(const Folder& folder, const QByteArray& name, ChewMode mode) {
    const auto failure = folder.chew(name, mode);
    EXPECT_FALSE(failure) << name.toStdString() << ": " << failure->code;
    return folder.result;
}

/// Opened by what it is, not by what it is called.
VImage opened(const QByteArray& path) {
    const bool isPng = load(path).startsWith("\x89PNG");
    return (isPng ? VImage::pngload(path.constData()) : VImage::jpegload(path.constData())).copy_memory();
}

MATCHER_P(Near, distance, "") {
    return std::abs(std::get<0>(arg) - std::get<1>(arg)) <= distance;
}

/// The colours in the middle of the quarters, row by row.
void expectQuarters(const VImage& image, const Quarters& colours, double distance = 6) {
    for (int i = 0; i < 4; ++i) {
        auto at = image.getpoint(image.width() * (1 + 2 * (i % 2)) / 4, image.height() * (1 + 2 * (i / 2)) / 4);
        at.resize(3);
        EXPECT_THAT(at, Pointwise(Near(distance), colours[size_t(i)])) << "quarter " << i;
    }
}

/// The names of all that the file says besides its pixels.
std::set<std::string> fields(const VImage& image) {
    char** const names = vips_image_get_fields(image.get_image());
    std::set<std::string> all;
    for (char** name = names; *name; ++name) all.insert(*name);
    g_strfreev(names);
    return all;
}

TEST(Chew, MakesEveryKindIntoEveryOther) {
    for (const char* extension : {"png", "jpg", "jpeg", "heic", "heif", "tiff", "tif", "webp", "gif", "bmp"}) {
        const Folder folder;
        const QByteArray name = QByteArray("photo.") + extension;
        save(folder / name, quarters(300, 200));
        const QByteArray source = load(folder / name);
        for (const auto mode : kModes) {
            SCOPED_TRACE(name.toStdString() + " " + std::to_string(int(mode)));
            const QByteArray result = chewed(folder, name, mode);
            const VImage image = opened(result);
            EXPECT_EQ(load(result).startsWith("\x89PNG"), mode == ChewMode::png);
            EXPECT_EQ(QSize(image.width(), image.height()), QSize(300, 200));
            expectQuarters(image, {kRed, kGreen, kBlue, kGrey});
        }
        EXPECT_EQ(load(folder / name), source);
    }
}

TEST(Chew, KnowsTheWaysToStoreABmp) {
    // Blue, green, red.
    const QByteArray red("\x1e\x1e\xdc", 3), green("\x1e\xc8\x1e", 3), blue("\xdc\x1e\x1e", 3), grey("\x80\x80\x80", 3);
    const QByteArray end(2, '\0'), opaque("\xff"), none(1, '\0');
    const QByteArray upper = red + green + end, lower = blue + grey + end;
    const QByteArray masks = littleEndian(0xff0000) + littleEndian(0xff00) + littleEndian(0xff);
    const QByteArray deep = blue + opaque + grey + opaque + red + opaque + green + opaque;
    const QByteArray colours = red + none + green + none + blue + none + grey + none;
    const struct {
        const char* what;
        QByteArray bytes;
    } cases[] = {
        {"bottom first", bmp(40, 2, 2, 24, 0, lower + upper)},
        {"top first", bmp(40, 2, quint32(-2), 24, 0, upper + lower)},
        {"oldest", bmp(12, 2, 2, 24, 0, lower + upper)},
        {"masks in the header", bmp(52, 2, 2, 32, 3, masks + deep)},
        {"with opacity", bmp(56, 2, 2, 32, 3, masks + littleEndian(0xff000000) + deep)},
        {"runs", bmp(40, 2, 2, 8, 1, colours + QByteArray("\1\2\1\3\0\0\1\0\1\1\0\1", 12), 4)},
        {"runs without an end", bmp(40, 2, 2, 8, 1, colours + QByteArray("\1\2\1\3\0\0\1\0\1\1", 10), 4)},
    };
    for (const auto& [what, bytes] : cases) {
        SCOPED_TRACE(what);
        const Folder folder;
        save(folder / "a.bmp", bytes);
        expectQuarters(opened(chewed(folder, "a.bmp", ChewMode::png)), {kRed, kGreen, kBlue, kGrey}, 0);
    }
}

TEST(Chew, LeavesBlackWhatABmpSkips) {
    const Folder folder;
    save(folder / "a.bmp", bmp(40, 500, 2, 8, 1, QByteArray(4, '\0') + QByteArray("\xff\xff\xff\0\0\1", 6), 2));
    ::mallopt(M_PERTURB, 0x55);
    EXPECT_EQ(opened(chewed(folder, "a.bmp", ChewMode::png)).max(), 0);
    ::mallopt(M_PERTURB, 0);
}

TEST(Chew, MakesSmallerWhatIsLargerThanTwoThousand) {
    const struct {
        QSize from, to;
    } cases[] = {
        {{4000, 3000}, {2000, 1500}}, {{3001, 1000}, {2000, 666}},  {{1800, 1200}, {1800, 1200}},
        {{2000, 2000}, {2000, 2000}}, {{2001, 2001}, {2000, 2000}}, {{1000, 3001}, {666, 2000}},
        {{9000, 3}, {2000, 1}},       {{16001, 77}, {2000, 9}},     {{7, 20000}, {1, 2000}},
    };
    for (const char* extension : {"jpg", "webp", "png", "tif"}) {
        const Folder folder;
        for (const auto& [from, to] : cases) {
            if (extension != QByteArray("jpg") && from.height() > 1000) continue;
            SCOPED_TRACE(std::string(extension) + " " + std::to_string(from.width()));
            save(folder / (QByteArray("a.") + extension), quarters(from.width(), from.height()));
            const VImage image = opened(chewed(folder, QByteArray("a.") + extension, ChewMode::smaller));
            EXPECT_EQ(QSize(image.width(), image.height()), to);
            if (to.width() > 20 && to.height() > 20) expectQuarters(image, {kRed, kGreen, kBlue, kGrey});
        }
    }
}

TEST(Chew, CompressesAsHardAsItsModeSays) {
    // The first quantiser of the standard luminance table, 16, scaled for the quality.
    const struct {
        ChewMode mode;
        int quantiser;
    } cases[] = {{ChewMode::jpeg, 5}, {ChewMode::smaller, 11}};
    const Folder folder;
    save(folder / "a.png", quarters(64, 64));
    for (const auto& [mode, quantiser] : cases) {
        const QByteArray bytes = load(chewed(folder, "a.png", mode));
        const qsizetype table = bytes.indexOf("\xff\xdb");
        ASSERT_GT(table, 0);
        EXPECT_EQ(int(bytes[table + 5]), quantiser);
    }
}

TEST(Chew, TurnsPicturesUpright) {
    // What is seen, row by row, when a camera stored these quarters and noted this orientation.
    const std::vector<Quarters> seen = {{kRed, kGreen, kBlue, kGrey}, {kGreen, kRed, kGrey, kBlue},
                                        {kGrey, kBlue, kGreen, kRed}, {kBlue, kGrey, kRed, kGreen},
                                        {kRed, kBlue, kGreen, kGrey}, {kBlue, kRed, kGrey, kGreen},
                                        {kGrey, kGreen, kBlue, kRed}, {kGreen, kGrey, kRed, kBlue}};
    for (const char* extension : {"jpg", "tif", "webp"}) {
        for (int orientation = 1; orientation <= 8; ++orientation) {
            const Folder folder;
            const QByteArray name = QByteArray("a.") + extension;
            VImage image = quarters(2400, 800).copy();
            image.set(VIPS_META_ORIENTATION, orientation);
            save(folder / name, image);
            for (const auto mode : kModes) {
                SCOPED_TRACE(name.toStdString() + " " + std::to_string(orientation) + " " + std::to_string(int(mode)));
                const VImage result = opened(chewed(folder, name, mode));
                QSize size = mode == ChewMode::smaller ? QSize(2000, 666) : QSize(2400, 800);
                if (orientation > 4) size.transpose();
                EXPECT_EQ(QSize(result.width(), result.height()), size);
                EXPECT_EQ(vips_image_get_orientation(const_cast<VImage&>(result).get_image()), 1);
                expectQuarters(result, seen[size_t(orientation - 1)]);
            }
        }
    }
}

TEST(Chew, KeepsTheProfileAndForgetsWhereItWas) {
    VImage image = quarters(400, 300).copy();
    image.set("exif-ifd3-GPSLatitude", "52/1 31/1 1/1 (52, 31, 1, Rational, 3 components, 24 bytes)");
    image.set("exif-ifd0-Model", "SecretCamera (SecretCamera, ASCII, 13 components, 13 bytes)");
    const QByteArray xmp("<x:xmpmeta>SecretXmp</x:xmpmeta>");
    vips_image_set_blob_copy(image.get_image(), VIPS_META_XMP_NAME, xmp.constData(), size_t(xmp.size()));
    image.set("png-comment-0-Comment", "SecretComment");
    const QByteArray icc = iccProfile();

    for (const bool hasProfile : {true, false}) {
        if (hasProfile)
            vips_image_set_blob_copy(image.get_image(), VIPS_META_ICC_NAME, icc.constData(), size_t(icc.size()));
        for (const char* name : {"a.jpg", "a.png", "a.tif", "a.webp"}) {
            const Folder folder;
            save(folder / name, image);
            const auto known = fields(VImage::new_from_file((folder / name).constData()));
            ASSERT_TRUE(known.contains("xmp-data"));
            ASSERT_TRUE(known.contains("exif-ifd3-GPSLatitude") || name != QByteArray("a.jpg"));
            for (const auto mode : kModes) {
                SCOPED_TRACE(std::string(name) + " " + std::to_string(int(mode)));
                const QByteArray result = chewed(folder, name, mode);
                EXPECT_FALSE(load(result).contains("Secret"));
                const VImage made = opened(result);
                EXPECT_THAT(fields(made), Not(Contains(ContainsRegex("GPS|Model|xmp|comment"))));
                ASSERT_EQ(fields(made).contains(VIPS_META_ICC_NAME), hasProfile);
                if (hasProfile) {
                    size_t kept = 0;
                    const void* bytes = made.get_blob(VIPS_META_ICC_NAME, &kept);
                    EXPECT_EQ(QByteArray(static_cast<const char*>(bytes), qsizetype(kept)), icc);
                }
                expectQuarters(made, {kRed, kGreen, kBlue, kGrey});
            }
        }
        image = image.copy();
        vips_image_remove(image.get_image(), VIPS_META_ICC_NAME);
    }
}

TEST(Chew, LaysTransparencyOnWhiteOnlyWhereItMust) {
    const auto half = [](double most) { return VImage::black(64, 64) + Colour{0, 0, 0, most / 2}; };
    const struct {
        const char* name;
        VImage image;
        int most;
    } cases[] = {
        {"8.png", half(255).cast(VIPS_FORMAT_UCHAR), 255},
        {"16.png", half(65535).cast(VIPS_FORMAT_USHORT), 65535},
        {"16.tif", half(65535).cast(VIPS_FORMAT_USHORT), 65535},
        {"grey.png", half(255).extract_band(2, VImage::option()->set("n", 2)).cast(VIPS_FORMAT_UCHAR), 255},
    };
    for (const auto& [name, image, most] : cases) {
        SCOPED_TRACE(name);
        const int bands = const_cast<VImage&>(image).bands();
        const auto tag = bands == 2      ? VIPS_INTERPRETATION_B_W
                         : most == 65535 ? VIPS_INTERPRETATION_RGB16
                                         : VIPS_INTERPRETATION_sRGB;
        const Folder folder;
        save(folder / name, image.copy(VImage::option()->set("interpretation", tag)));
        for (const auto mode : {ChewMode::jpeg, ChewMode::smaller})
            EXPECT_THAT(opened(chewed(folder, name, mode)).getpoint(32, 32),
                        Pointwise(Near(2), Colour(size_t(bands - 1), 127)));
        Colour kept(size_t(bands), 0);
        kept.back() = most / 2;
        EXPECT_THAT(opened(chewed(folder, name, ChewMode::png)).getpoint(32, 32), Pointwise(Near(0), kept));
    }
}

TEST(Chew, ShowsOtherColoursAsTheyLook) {
    // No colours but those that inks can show.
    const Quarters colours{{200, 60, 60}, {80, 150, 80}, {70, 90, 150}, kGrey};
    const VImage rgb = quarters(200, 200, colours);
    const VImage cmyk = rgb.icc_transform("cmyk", VImage::option()->set("input_profile", "srgb"));
    const VImage bareCmyk = cmyk.copy();
    vips_image_remove(bareCmyk.get_image(), VIPS_META_ICC_NAME);
    const struct {
        const char* name;
        VImage image;
    } cases[] = {
        {"cmyk.jpg", cmyk},
        {"cmyk.tif", cmyk},
        {"barecmyk.jpg", bareCmyk},
        {"lab.tif", rgb.colourspace(VIPS_INTERPRETATION_LAB)},
        {"linear.tif", rgb.colourspace(VIPS_INTERPRETATION_scRGB)},
        {"deep.tif", rgb.colourspace(VIPS_INTERPRETATION_RGB16)},
        {"palette.png", rgb},
    };
    for (const auto& [name, image] : cases) {
        const Folder folder;
        if (name == QByteArray("palette.png"))
            image.pngsave((folder / name).constData(), VImage::option()->set("palette", true));
        else
            save(folder / name, image);
        for (const auto mode : kModes) {
            SCOPED_TRACE(std::string(name) + " " + std::to_string(int(mode)));
            const VImage result = opened(chewed(folder, name, mode));
            const bool staysDeep = name == QByteArray("deep.tif") && mode == ChewMode::png;
            EXPECT_EQ(result.interpretation(), staysDeep ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB);
            expectQuarters(staysDeep ? result / 257 : result, colours, 12);
        }
    }
}

TEST(Chew, TakesTheFirstPictureOfMany) {
    const int height = 40;
    const VImage first = quarters(60, height);
    VImage pages = first.join(first.invert(), VIPS_DIRECTION_VERTICAL).copy();
    pages.set(VIPS_META_PAGE_HEIGHT, height);
    for (const char* name : {"a.gif", "a.webp", "a.tif"}) {
        const Folder folder;
        save(folder / name, pages);
        for (const auto mode : kModes) {
            const VImage result = opened(chewed(folder, name, mode));
            EXPECT_EQ(result.height(), height);
            expectQuarters(result, {kRed, kGreen, kBlue, kGrey}, 20);
        }
    }
}

}  // namespace
