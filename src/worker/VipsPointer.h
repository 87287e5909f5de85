#pragma once

#include <vips/vips.h>

#include <memory>

struct VipsUnref {
    void operator()(VipsImage* image) const { g_object_unref(image); }
};

/// Owns one reference to an image.
using VipsPointer = std::unique_ptr<VipsImage, VipsUnref>;
