#include <cstdint>

#include "SourceFile.h"
#include "worker/Chew.h"

/// Chews any bytes. Whatever they are, the only file that may be left is the result.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const SourceFile source("a");
    // Decoders hardly look at the last byte, so it can say what to make.
    const auto mode = size == 0 ? ChewMode::jpeg : ChewMode(data[size - 1] % 3);
    const QByteArray path = source.with(data, size);
    const auto result = chew(path, mode, newResult(path, source.folder()));
    if (const auto* made = std::get_if<QByteArray>(&result))
        if (::unlink(made->constData()) != 0) throw std::runtime_error("there is no result");
    const auto files = std::filesystem::directory_iterator(source.folder().toStdString());
    if (std::distance(begin(files), end(files)) != 1) throw std::runtime_error("something was left behind");
    return 0;
}
