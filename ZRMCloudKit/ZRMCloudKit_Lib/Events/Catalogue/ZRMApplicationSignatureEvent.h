// The hashes of the application's code signature.
#pragma once

#include <vector>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMTableEvent.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/CodeSignatureWatcher/ZRMCodeSignatureDescriptor.h"

class ZRMApplicationSignatureEvent final : public ZRMTableEvent<ZRMApplicationSignatureEvent> {
  public:
    using Signature = std::vector<ZRMCodeSignatureDescriptor>;

    static ZRMEventTable<ZRMApplicationSignatureEvent> table();
    // The members of one entry of "applicationSignatures".
    static std::span<const ZRMEventField<ZRMCodeSignatureDescriptor>> entryTable();

    ZRMApplicationSignatureEvent(Signature signature,
                                 std::shared_ptr<const ZRMCommonParametersProvider> provider);

    [[nodiscard]] const Signature& signature() const { return signature_; }
    // One object for each descriptor, hashed anew on each call.
    [[nodiscard]] std::vector<ZRMDictionary> applicationSignatures() const;

  private:
    Signature signature_;
};
