#include <cstdint>

#include "SourceFile.h"
#include "worker/ReadText.h"

/// Reads the text in any bytes, taken for a picture or for a PDF, whichever their start says.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const SourceFile picture("a.png"), document("a.pdf");
    const bool isDocument = size > 0 && data[0] == '%';
    readText((isDocument ? document : picture).with(data, size));
    return 0;
}
