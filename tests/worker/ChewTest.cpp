#include <gmock/gmock.h>
#include <malloc.h>

#include "Images.h"

namespace {

using testing::Pointwise;

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

QSize sizeOf(const VImage& image) {
    return {image.width(), image.height()};
}

/// Makes the file into every kind, and looks at each.
template <class Check>
void inAllModes(const Folder& folder, const QByteArray& name, Check check) {
    for (const auto mode : kModes) {
        SCOPED_TRACE(name.toStdString() + " " + std::to_string(int(mode)));
        check(opened(chewed(folder, name, mode)), mode);
    }
}

VImage thumbnail(const Folder& folder, const QByteArray& name, int side) {
    const auto made = folder.thumbnail(name, side);
    const auto* image = std::get_if<Thumbnail>(&made);
    EXPECT_TRUE(image) << name.toStdString();
    if (!image) return VImage::black(1, 1);
    EXPECT_EQ(image->pixels.size(), image->width * image->height * 4);
    const QByteArray& pixels = image->pixels;
    return VImage::new_from_memory(const_cast<char*>(pixels.constData()), size_t(pixels.size()), image->width,
                                   image->height, 4, VIPS_FORMAT_UCHAR)
        .copy_memory();
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

TEST(Chew, MakesEveryKindIntoEveryOther) {
    // Where a file can hold many, the first is taken.
    const VImage first = quarters(300, 200);
    VImage many = first.join(first.invert(), VIPS_DIRECTION_VERTICAL).copy();
    many.set(VIPS_META_PAGE_HEIGHT, 200);
    // The first of the standard luminance table, 16, is scaled for the quality.
    constexpr int quantisers[] = {5, 0, 11};
    for (const QByteArray kind : kKinds) {
        const Folder folder;
        save(folder / ("a." + kind), kind == "gif" || kind == "tif" || kind == "webp" ? many : first);
        inAllModes(folder, "a." + kind, [&](const VImage& image, ChewMode mode) {
            const QByteArray bytes = load(folder.result);
            EXPECT_EQ(bytes.startsWith("\x89PNG"), mode == ChewMode::png);
            const qsizetype table = bytes.indexOf("\xff\xdb");
            EXPECT_EQ(mode == ChewMode::png ? 0 : int(bytes.at(table + 5)), quantisers[int(mode)]);
            EXPECT_EQ(sizeOf(image), QSize(300, 200));
            expectQuarters(image, kPlain);
        });
        const VImage little = thumbnail(folder, "a." + kind, 96);
        EXPECT_EQ(sizeOf(little), QSize(96, 64));
        expectQuarters(little, kPlain);
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
    const std::pair<const char*, QByteArray> cases[] = {
        {"bottom first", bmp(40, 2, 2, 24, 0, lower + upper)},
        {"top first", bmp(40, 2, quint32(-2), 24, 0, upper + lower)},
        {"oldest", bmp(12, 2, 2, 24, 0, lower + upper)},
        {"masks in the header", bmp(52, 2, 2, 32, 3, masks + deep)},
        {"with opacity", bmp(56, 2, 2, 32, 3, masks + littleEndian(0xff000000) + deep)},
        {"runs", bmp(40, 2, 2, 8, 1, colours + QByteArray("\1\2\1\3\0\0\1\0\1\1\0\1", 12), 4)},
        {"runs without an end", bmp(40, 2, 2, 8, 1, colours + QByteArray("\1\2\1\3\0\0\1\0\1\1", 10), 4)},
    };
    const Folder folder;
    for (const auto& [what, bytes] : cases) {
        SCOPED_TRACE(what);
        save(folder / "a.bmp", bytes);
        expectQuarters(opened(chewed(folder, "a.bmp", ChewMode::png)), kPlain, 0);
    }
    // What runs skip is black, whatever was in the memory before.
    save(folder / "a.bmp", bmp(40, 500, 2, 8, 1, QByteArray(4, '\0') + QByteArray("\xff\xff\xff\0\0\1", 6), 2));
    ::mallopt(M_PERTURB, 0x55);
    EXPECT_EQ(opened(chewed(folder, "a.bmp", ChewMode::png)).max(), 0);
    ::mallopt(M_PERTURB, 0);
}

TEST(Chew, MakesSmallerWhatIsLarger) {
    const struct {
        QSize from, smaller, thumbnail;
        QByteArrayList kinds = {"jpg"};
    } cases[] = {
        {{4000, 900}, {2000, 450}, {96, 22}, {"jpg", "webp", "png"}},
        {{9000, 3}, {2000, 1}, {96, 1}, {"jpg", "webp", "png"}},
        {{1000, 3001}, {666, 2000}, {32, 96}},
        {{7, 20000}, {1, 2000}, {1, 96}},
        {{97, 40}, {97, 40}, {96, 40}},
        {{30, 20}, {30, 20}, {30, 20}},
    };
    const Folder folder;
    for (const auto& [from, smaller, small, kinds] : cases) {
        for (const QByteArray& kind : kinds) {
            SCOPED_TRACE(kind.toStdString() + " " + std::to_string(from.width()));
            const QByteArray name = "a." + kind;
            save(folder / name, quarters(from.width(), from.height()));
            const VImage image = opened(chewed(folder, name, ChewMode::smaller)), little = thumbnail(folder, name, 96);
            EXPECT_EQ(sizeOf(image), smaller);
            EXPECT_EQ(sizeOf(little), small);
            if (std::min(smaller.width(), smaller.height()) > 20) expectQuarters(image, kPlain);
            if (std::min(small.width(), small.height()) > 20) expectQuarters(little, kPlain);
        }
    }
}

TEST(Chew, TurnsPicturesUpright) {
    // What is seen, row by row, when a camera stored these quarters and noted this orientation.
    const Quarters seen[] = {{kRed, kGreen, kBlue, kGrey}, {kGreen, kRed, kGrey, kBlue}, {kGrey, kBlue, kGreen, kRed},
                             {kBlue, kGrey, kRed, kGreen}, {kRed, kBlue, kGreen, kGrey}, {kBlue, kRed, kGrey, kGreen},
                             {kGrey, kGreen, kBlue, kRed}, {kGreen, kGrey, kRed, kBlue}};
    const Folder folder;
    VImage image = quarters(2100, 420).copy();
    for (int orientation = 1; orientation <= 8; ++orientation) {
        SCOPED_TRACE(orientation);
        image.set(VIPS_META_ORIENTATION, orientation);
        save(folder / "a.jpg", image);
        const auto upright = [&](QSize size) { return orientation > 4 ? size.transposed() : size; };
        const Quarters& colours = seen[orientation - 1];
        inAllModes(folder, "a.jpg", [&](const VImage& result, ChewMode mode) {
            EXPECT_EQ(sizeOf(result), upright(mode == ChewMode::smaller ? QSize(2000, 400) : QSize(2100, 420)));
            EXPECT_EQ(vips_image_get_orientation(const_cast<VImage&>(result).get_image()), 1);
            expectQuarters(result, colours);
        });
        const VImage little = thumbnail(folder, "a.jpg", 60);
        EXPECT_EQ(sizeOf(little), upright({60, 12}));
        expectQuarters(little, colours);
    }
}

TEST(Chew, KeepsTheProfileAndForgetsWhereItWas) {
    constexpr char kPlace[] = "exif-ifd3-GPSLatitude", kCamera[] = "exif-ifd0-Model", kNote[] = "png-comment-0-Note";
    const QByteArray icc = iccProfile();
    for (const bool hasProfile : {true, false}) {
        VImage image = quarters(400, 300).copy();
        image.set(kPlace, "52/1 31/1 1/1 (52, 31, 1, Rational, 3 components, 24 bytes)");
        image.set(kCamera, "SecretCamera (SecretCamera, ASCII, 13 components, 13 bytes)");
        image.set(kNote, "SecretComment");
        setBlob(image, VIPS_META_XMP_NAME, "<x:xmpmeta>SecretXmp</x:xmpmeta>");
        if (hasProfile) setBlob(image, VIPS_META_ICC_NAME, icc);
        for (const char* name : {"a.jpg", "a.png", "a.webp"}) {
            const Folder folder;
            save(folder / name, image);
            ASSERT_TRUE(VImage::new_from_file((folder / name).constData()).get_typeof(VIPS_META_XMP_NAME));
            inAllModes(folder, name, [&](const VImage& made, ChewMode) {
                EXPECT_FALSE(load(folder.result).contains("Secret"));
                for (const char* field : {kPlace, kCamera, kNote, VIPS_META_XMP_NAME})
                    EXPECT_FALSE(made.get_typeof(field)) << field;
                EXPECT_EQ(profileOf(made), hasProfile ? icc : QByteArray());
                expectQuarters(made, kPlain);
            });
            // A wide screen's red is more than most show.
            expectQuarters(thumbnail(folder, name, 96), {hasProfile ? Colour{242, 0, 0} : kRed, kGreen, kBlue, kGrey},
                           hasProfile ? 32 : 6);
        }
    }
}

TEST(Chew, LaysTransparencyOnWhiteOnlyWhereItMust) {
    const VImage narrow = (VImage::black(64, 64) + Colour{0, 0, 0, 127}).cast(VIPS_FORMAT_UCHAR);
    const VImage deep = (VImage::black(64, 64) + Colour{0, 0, 0, 32767}).cast(VIPS_FORMAT_USHORT);
    const struct {
        const char* name;
        VImage image;
        VipsInterpretation tag;
        Colour kept;
    } cases[] = {
        {"8.png", narrow, VIPS_INTERPRETATION_sRGB, {0, 0, 0, 127}},
        {"16.png", deep, VIPS_INTERPRETATION_RGB16, {0, 0, 0, 32767}},
        {"grey.png", narrow.extract_band(2, VImage::option()->set("n", 2)), VIPS_INTERPRETATION_B_W, {0, 127}},
    };
    for (const auto& [name, image, tag, kept] : cases) {
        const Folder folder;
        save(folder / name, image.copy(VImage::option()->set("interpretation", tag)));
        inAllModes(folder, name, [&, &transparent = kept](const VImage& made, ChewMode mode) {
            const bool keeps = mode == ChewMode::png;
            EXPECT_THAT(made.getpoint(32, 32),
                        Pointwise(Near(keeps ? 0 : 2), keeps ? transparent : Colour(transparent.size() - 1, 127)));
        });
        EXPECT_EQ(thumbnail(folder, name, 32).getpoint(16, 16), (Colour{0, 0, 0, 127})) << name;
    }
}

TEST(Chew, ShowsOtherColoursAsTheyLook) {
    // No colours but those that inks can show.
    const Quarters colours{{200, 60, 60}, {80, 150, 80}, {70, 90, 150}, kGrey};
    const VImage rgb = quarters(200, 200, colours);
    const VImage cmyk = rgb.icc_transform("cmyk", VImage::option()->set("input_profile", "srgb"));
    const VImage bareCmyk = cmyk.copy();
    vips_image_remove(bareCmyk.get_image(), VIPS_META_ICC_NAME);
    const std::pair<const char*, VImage> cases[] = {
        {"cmyk.jpg", cmyk},
        {"barecmyk.jpg", bareCmyk},
        {"lab.tif", rgb.colourspace(VIPS_INTERPRETATION_LAB)},
        {"linear.tif", rgb.colourspace(VIPS_INTERPRETATION_scRGB)},
        {"deep.tif", rgb.colourspace(VIPS_INTERPRETATION_RGB16)},
    };
    const Folder folder;
    for (const auto& [name, image] : cases) save(folder / name, image);
    rgb.pngsave((folder / "palette.png").constData(), VImage::option()->set("palette", true));
    for (const QString& file : folder.names()) {
        const QByteArray name = file.toLatin1();
        inAllModes(folder, name, [&](const VImage& result, ChewMode mode) {
            const bool staysDeep = name == "deep.tif" && mode == ChewMode::png;
            EXPECT_EQ(result.interpretation(), staysDeep ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB);
            expectQuarters(staysDeep ? result / 257 : result, colours, 12);
        });
        SCOPED_TRACE(name.toStdString());
        expectQuarters(thumbnail(folder, name, 40), colours, 12);
    }
}

}  // namespace
