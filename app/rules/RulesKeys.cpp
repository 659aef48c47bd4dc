#include "rules/RulesKeys.h"

#include <cstring>

namespace tolvar::rulekeys {

const Key* findKey(std::span<const Key> keys, const char* name) {
    for (const Key& key : keys)
        if (std::strcmp(key.name, name) == 0) return &key;
    return nullptr;
}

}  // namespace tolvar::rulekeys
