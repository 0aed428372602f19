// Deep merge of dictionaries.
#pragma once

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"

// The first dictionary with the second's entries over it: two dictionaries under one key are merged
// the same way, in every other conflict the second's value wins. Keys keep the first's order; new
// ones follow in the second's.
[[nodiscard]] ZRMDictionary zrm_mergeDictionary(ZRMDictionary first, const ZRMDictionary& with);

// zrm_mergeDictionary(self, other).
[[nodiscard]] ZRMDictionary zrm_dictionaryByMergingWith(ZRMDictionary self,
                                                        const ZRMDictionary& other);
