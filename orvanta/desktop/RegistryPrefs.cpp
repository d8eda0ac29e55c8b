#include "orvanta/desktop/RegistryPrefs.h"

#include <cstring>

#include "orvanta/foundation/Resource.h"

namespace Orvanta {

using Value = Platform::SettingsKey::Value;

RegistryPrefs::RegistryPrefs(UINT resourceID) : mKey(Resource(static_cast<int>(resourceID)).getString()) {}

RegistryPrefs::~RegistryPrefs() = default;

bool RegistryPrefs::isPref(const char16_t* name) {
    return mKey.query(name).has_value();
}

CString RegistryPrefs::getString(const char16_t* name) {
    const auto value = mKey.query(name);
    return value && value->type == REG_SZ ? value->text() : CString();
}

void RegistryPrefs::setString(const char16_t* name, const CString& value) {
    mKey.set(name, Value::ofText(value));
}

unsigned long RegistryPrefs::getInt(const char16_t* name) {
    const auto value = mKey.query(name);
    if (!value || value->type != REG_DWORD || value->data.size() != 4) return 0xFFFFFFFFUL;
    const auto& d = value->data;
    return d[0] | (d[1] << 8) | (d[2] << 16) | (static_cast<unsigned long>(d[3]) << 24);
}

void RegistryPrefs::setInt(const char16_t* name, unsigned long value) {
    mKey.set(name, Value{REG_DWORD,
                         {static_cast<unsigned char>(value), static_cast<unsigned char>(value >> 8),
                          static_cast<unsigned char>(value >> 16), static_cast<unsigned char>(value >> 24)}});
}

void RegistryPrefs::setBinary(const char16_t* name, const unsigned char* data, unsigned long size) {
    mKey.set(name, Value{REG_BINARY, std::vector<unsigned char>(data, data + (data ? size : 0))});
}

bool RegistryPrefs::getBinary(const char16_t* name, unsigned char* buffer, unsigned long& size) {
    const auto value = mKey.query(name);
    if (!value || value->type != REG_BINARY) {
        size = 0;
        return false;
    }
    // A buffer too small is refused whole, size untouched, as the platform's "more data" answer.
    if (buffer && size < value->data.size()) return false;
    if (buffer && !value->data.empty()) std::memcpy(buffer, value->data.data(), value->data.size());
    size = value->data.size();
    return true;
}

}  // namespace Orvanta
