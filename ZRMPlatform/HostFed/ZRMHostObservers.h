// Who observes something that the host tells.
#pragma once

#include <algorithm>
#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMQueue.h"
#include "ZRMPlatform/Ports/ZRMSubscription.h"

// What one observer has not heard of yet. At most one task of a mailbox is posted at any time, so
// that values keep their order on concurrent queues too and thousands of them cost few posts.
template <class Value>
class ZRMHostMailbox final : public std::enable_shared_from_this<ZRMHostMailbox<Value>> {
  public:
    using Callback = std::function<void(const Value&)>;

    ZRMHostMailbox(std::shared_ptr<ZRMQueue> queue, Callback callback)
        : queue_(std::move(queue)), callback_(std::move(callback)) {}

    // Whether post() must follow, with no lock held.
    [[nodiscard]] bool put(const Value& value) {
        const ZRMLockGuard lock(mutex_);
        if (hasEnded_) {
            return false;
        }
        pending_.push_back(value);
        return !std::exchange(isPosted_, true);
    }

    void post() {
        queue_->post([weak = this->weak_from_this()] {
            if (const auto mailbox = weak.lock()) {
                mailbox->deliver();
            }
        });
    }

    void end() {
        std::deque<Value> dropped;
        const ZRMLockGuard lock(mutex_);
        hasEnded_ = true;
        dropped.swap(pending_);
    }

  private:
    void deliver() {
        std::deque<Value> batch;
        {
            const ZRMLockGuard lock(mutex_);
            batch.swap(pending_);
        }
        for (const auto& value : batch) {
            if (hasEnded_) {
                return;
            }
            callback_(value);
        }
        {
            const ZRMLockGuard lock(mutex_);
            isPosted_ = !pending_.empty();
            if (!isPosted_) {
                return;
            }
        }
        post();
    }

    const std::shared_ptr<ZRMQueue> queue_;
    const Callback callback_;
    ZRMMutex mutex_;  // guards pending_, isPosted_ and the writing of hasEnded_
    std::deque<Value> pending_ ZRM_GUARDED_BY(mutex_);
    bool isPosted_ ZRM_GUARDED_BY(mutex_) = false;
    std::atomic<bool> hasEnded_ = false;
};

// Not thread-safe by itself: the owner's lock guards it, so that what the owner keeps and what its
// observers hear change in one step.
template <class Value>
class ZRMHostObservers {
  public:
    using Mailbox = ZRMHostMailbox<Value>;
    using Callback = typename Mailbox::Callback;

    // What was put for observers under the owner's lock. Made before that lock is taken, so that
    // it goes after it: an observer that went meanwhile is destroyed here.
    class Delivery {
      public:
        // Without the owner's lock.
        void post() const {
            for (const auto& mailbox : due_) {
                mailbox->post();
            }
        }

      private:
        friend class ZRMHostObservers;
        std::vector<std::shared_ptr<Mailbox>> due_;
        std::vector<std::shared_ptr<Mailbox>> others_;
    };

    [[nodiscard]] std::shared_ptr<ZRMSubscription> add(std::shared_ptr<ZRMQueue> queue,
                                                       Callback callback) {
        std::erase_if(mailboxes_, [](const auto& each) { return each.expired(); });
        auto mailbox = std::make_shared<Mailbox>(std::move(queue), std::move(callback));
        mailboxes_.push_back(mailbox);
        return std::make_shared<Subscription>(std::move(mailbox));
    }

    void put(const Value& value, Delivery& delivery) const {
        for (const auto& each : mailboxes_) {
            if (auto mailbox = each.lock()) {
                auto& kept = mailbox->put(value) ? delivery.due_ : delivery.others_;
                kept.push_back(std::move(mailbox));
            }
        }
    }

    [[nodiscard]] bool isEmpty() const {
        return std::ranges::all_of(mailboxes_, [](const auto& each) { return each.expired(); });
    }

  private:
    class Subscription final : public ZRMSubscription {
      public:
        explicit Subscription(std::shared_ptr<Mailbox> mailbox) : mailbox_(std::move(mailbox)) {}
        ~Subscription() override { mailbox_->end(); }
        Subscription(const Subscription&) = delete;
        Subscription& operator=(const Subscription&) = delete;

      private:
        const std::shared_ptr<Mailbox> mailbox_;
    };

    std::vector<std::weak_ptr<Mailbox>> mailboxes_;
};
