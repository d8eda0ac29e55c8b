// The mount table's parser, over any bytes: the kernel's file is trusted, but a test root is not.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "orvanta/platform/MountTable.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto entries =
        Orvanta::Platform::MountTable::parse(std::string_view(reinterpret_cast<const char*>(data), size));
    for (const auto& entry : entries)
        if (entry.mountPoint.size() > size) __builtin_trap();
    return 0;
}
