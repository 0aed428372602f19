// Does not compile with clang: the member is touched without its lock. A test holds that so.
#include "ZRMPlatform/Ports/ZRMMutex.h"

class ZRMLockMisuse {
  public:
    void touch() { ++count_; }

  private:
    ZRMMutex mutex_;
    int count_ ZRM_GUARDED_BY(mutex_) = 0;
};
