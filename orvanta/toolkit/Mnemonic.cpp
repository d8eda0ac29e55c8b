#include "orvanta/toolkit/Mnemonic.h"

#include <vector>

#include "orvanta/toolkit/Container.h"

namespace Orvanta {

namespace {

void collect(Control* control, std::vector<Control*>& controls) {
    if (control->isHidden() || !control->isEnabled()) return;
    controls.push_back(control);
    if (auto* container = dynamic_cast<Container*>(control))
        for (int i = 0; i < container->getChildCount(); ++i) collect(container->getChildAt(i), controls);
}

}  // namespace

CString Mnemonic::strip(const CString& text, int* marked) {
    if (marked) *marked = -1;
    if (text.find(u'&') == CString::npos) return text;
    std::u16string shown;
    const std::u16string& t = text.str();
    for (std::size_t i = 0; i < t.size(); ++i) {
        if (t[i] != u'&') {
            shown += t[i];
            continue;
        }
        if (++i == t.size()) break;
        if (t[i] != u'&' && marked && *marked < 0) *marked = static_cast<int>(shown.size());
        shown += t[i];
    }
    return CString(std::move(shown));
}

bool Mnemonic::matches(const CString& text, char16_t key) {
    int marked = -1;
    const CString shown = strip(text, &marked);
    if (marked < 0) return false;
    char16_t c = shown[static_cast<std::size_t>(marked)];
    if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - u'a' + u'A');
    return c == key;
}

bool Mnemonic::dispatch(Control* from, char16_t key) {
    Control* root = from;
    while (root->getParent()) root = root->getParent();
    std::vector<Control*> controls;
    collect(root, controls);
    const int count = static_cast<int>(controls.size());
    int start = 0;
    for (int i = 0; i < count; ++i)
        if (controls[i] == from) start = i + 1;
    for (int n = 0; n < count; ++n) {
        // A control may change the tree as it acts, so it is kept while asked.
        OwnedPtr<Control> keep(controls[(start + n) % count]);
        if (keep->onMnemonic(key)) return true;
    }
    return false;
}

}  // namespace Orvanta
