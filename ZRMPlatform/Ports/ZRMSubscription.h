// An observation under way.
#pragma once

// Ends when the last reference to it is dropped. A delivery that was posted before may still come.
class ZRMSubscription {
  public:
    virtual ~ZRMSubscription() = default;
};
