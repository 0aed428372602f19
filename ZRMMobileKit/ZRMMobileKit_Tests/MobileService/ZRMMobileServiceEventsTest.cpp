#include "ZRMMobileKit/ZRMMobileKit_Tests/Support/ZRMServiceFixture.h"

namespace {

using testing::Contains;
using testing::IsEmpty;

using Calls = std::vector<std::string>;

class ZRMMobileServiceEvents : public ZRMServiceFixture {
  protected:
    ZRMHandlerRecord login(const std::optional<std::string>& userId,
                           const std::optional<std::string>& userName = std::nullopt,
                           ZRMLoginResult result = ZRMLoginResult::Success) {
        ZRMHandlerRecord record;
        service().sendLogin(userId, result, userName, record.handler());
        return record;
    }
};

struct SendRow {
    const char* name;
    std::function<void(ZRMMobileServiceImpl&, ZRMMobileServiceImpl::CompletionHandler)> send;
    const char* call;
};

const SendRow kSends[] = {
    {"Login",
     [](auto& service, auto handler) {
         service.sendLogin("user", ZRMLoginResult::AuthTimeout, "name", handler);
     },
     "send 0 name AUTH_TIMEOUT user"},
    {"Logout", [](auto& service, auto handler) { service.sendLogout(handler); },
     "send 1 absent absent absent"},
    {"Navigation",
     [](auto& service, auto handler) { service.sendUINavigationEvent("point", handler); },
     "send 2 point absent absent"},
    {"SessionId", [](auto& service, auto handler) { service.sendSessionId("id", handler); },
     "send 3 id absent absent"},
    {"GeoLocation", [](auto& service, auto handler) { service.sendGeoLocation(handler); },
     "send 4 absent absent absent"},
};

class ZRMMobileServiceSend : public ZRMMobileServiceEvents,
                             public testing::WithParamInterface<SendRow> {};

}  // namespace

TEST_P(ZRMMobileServiceSend, GoesToEveryServiceWithItsArguments) {
    activate();
    ZRMHandlerRecord record;
    GetParam().send(service(), record.handler());
    EXPECT_EQ(first_->calls, Calls{GetParam().call});
    EXPECT_EQ(second_->calls, Calls{GetParam().call});
    EXPECT_EQ(record.count(), 0u);
    device_.runUntilIdle();
    EXPECT_TRUE(record.succeededOnMain());
}

TEST_P(ZRMMobileServiceSend, BeforeActivationIsError3AtOnceOnTheCallersThread) {
    ZRMHandlerRecord record;
    GetParam().send(service(), record.handler());
    EXPECT_EQ(record.code(), 3);
    EXPECT_FALSE(record.onMainQueue());
    device_.runUntilIdle();
    EXPECT_EQ(record.count(), 1u);
}

TEST_P(ZRMMobileServiceSend, AfterTheSettingsProviderFailedIsError3AtOnce) {
    provider_->error = error(1);
    activate();
    ZRMHandlerRecord record;
    GetParam().send(service(), record.handler());
    EXPECT_EQ(record.code(), 3);
}

TEST_P(ZRMMobileServiceSend, DuringActivationReachesTheServicesByTheirOwnRunningState) {
    second_->holdsBack = true;
    ZRMHandlerRecord activation;
    service().activateWithCompletionHandler(activation.handler());
    second_->running = false;  // until it has answered
    ZRMHandlerRecord record;
    GetParam().send(service(), record.handler());
    EXPECT_THAT(first_->calls, Contains(GetParam().call));
    device_.runUntilIdle();
    EXPECT_EQ(record.code(), 3);
    EXPECT_TRUE(record.onMainQueue());
    EXPECT_EQ(activation.count(), 0u);
    second_->giveAnswers();
    device_.runUntilIdle();
    EXPECT_TRUE(activation.succeededOnMain());
}

TEST_P(ZRMMobileServiceSend, ErrorOfAServiceGoesToTheHandlerOnTheMainQueue) {
    activate();
    first_->eventError = error(12);
    second_->eventError = error(13);
    ZRMHandlerRecord record;
    GetParam().send(service(), record.handler());
    device_.runUntilIdle();
    EXPECT_EQ(record.code(), 12);
    EXPECT_TRUE(record.onMainQueue());
}

TEST_P(ZRMMobileServiceSend, HandlerMayBeAbsent) {
    GetParam().send(service(), nullptr);
    activate();
    GetParam().send(service(), nullptr);
    device_.runUntilIdle();
    EXPECT_EQ(first_->calls, Calls{GetParam().call});
}

TEST_P(ZRMMobileServiceSend, HandlerMayLetGoOfTheService) {
    activate();
    int calls = 0;
    GetParam().send(service(), [&](const std::optional<ZRMError>&) {
        ++calls;
        service_.reset();
    });
    device_.runUntilIdle();
    EXPECT_EQ(calls, 1);
}

TEST_P(ZRMMobileServiceSend, HandlerOfAServiceThatIsGoneIsStillCalled) {
    activate();
    first_->holdsBack = true;
    ZRMHandlerRecord record;
    GetParam().send(service(), record.handler());
    service_.reset();
    first_->giveAnswers();
    device_.runUntilIdle();
    EXPECT_TRUE(record.succeededOnMain());
}

INSTANTIATE_TEST_SUITE_P(All, ZRMMobileServiceSend, testing::ValuesIn(kSends),
                         [](const auto& instance) { return instance.param.name; });

TEST_F(ZRMMobileServiceEvents, UserIdentifierOf255CharactersIsSent) {
    activate();
    const std::string userId(255, 'u');
    login(userId);
    EXPECT_EQ(first_->calls, Calls{"send 0 absent SUCCESS " + userId});
}

TEST_F(ZRMMobileServiceEvents, UserIdentifierOutsideItsLimitsIsError9AtOnce) {
    activate();
    EXPECT_EQ(login("").code(), 9);
    EXPECT_EQ(login(std::nullopt).code(), 9);
    EXPECT_EQ(login(std::string(256, 'u')).code(), 9);
    EXPECT_THAT(first_->calls, IsEmpty());
    EXPECT_EQ(log_.errors(),
              (Calls{"Invalid userId value (0 characters)", "Invalid userId value (0 characters)",
                     "Invalid userId value (256 characters)"}));
}

TEST_F(ZRMMobileServiceEvents, ValidationNeedsNoActivationAndComesFirst) {
    EXPECT_EQ(login("").code(), 9);
    ZRMHandlerRecord record;
    service().sendSessionId(std::string(1025, 's'), record.handler());
    EXPECT_EQ(record.code(), 11);
    EXPECT_FALSE(service().isActivated());
}

TEST_F(ZRMMobileServiceEvents, UserNameMayBeAbsentOrEmptyAndIsSentAsItIs) {
    activate();
    login("user", std::nullopt);
    login("user", "");
    login("user", std::string(255, 'n'));
    EXPECT_EQ(first_->calls, (Calls{"send 0 absent SUCCESS user", "send 0  SUCCESS user",
                                    "send 0 " + std::string(255, 'n') + " SUCCESS user"}));
}

TEST_F(ZRMMobileServiceEvents, UserNameOf256CharactersIsError9) {
    activate();
    EXPECT_EQ(login("user", std::string(256, 'n')).code(), 9);
    EXPECT_THAT(first_->calls, IsEmpty());
    EXPECT_EQ(log_.errors(), Calls{"Invalid userName value (256 characters)"});
}

TEST_F(ZRMMobileServiceEvents, UnsupportedLoginResultIsAnAssertionEvenWithAnInvalidIdentifier) {
    activate();
    ZRMHandlerRecord record;
    EXPECT_THROW(
        service().sendLogin("", static_cast<ZRMLoginResult>(7), std::nullopt, record.handler()),
        ZRMAssertionFailure);
    EXPECT_EQ(record.count(), 0u);
    EXPECT_THAT(log_.errors(), IsEmpty());
}

TEST_F(ZRMMobileServiceEvents, NavigationPointOf2048CharactersPassesAnd2049Fails) {
    activate();
    ZRMHandlerRecord passes;
    ZRMHandlerRecord fails;
    service().sendUINavigationEvent(std::string(2048, 'p'), passes.handler());
    service().sendUINavigationEvent(std::string(2049, 'p'), fails.handler());
    EXPECT_EQ(fails.code(), 10);
    EXPECT_EQ(log_.errors(), Calls{"Invalid UI navigation event value (2049 characters)"});
    device_.runUntilIdle();
    EXPECT_TRUE(passes.succeededOnMain());
    EXPECT_EQ(first_->calls.size(), 1u);
}

TEST_F(ZRMMobileServiceEvents, NavigationPointMayBeEmptyOrAbsent) {
    activate();
    service().sendUINavigationEvent("", nullptr);
    service().sendUINavigationEvent(std::nullopt, nullptr);
    EXPECT_EQ(first_->calls, (Calls{"send 2  absent absent", "send 2 absent absent absent"}));
}

TEST_F(ZRMMobileServiceEvents, SessionIdOf1024CharactersPassesAnd1025Fails) {
    activate();
    ZRMHandlerRecord passes;
    ZRMHandlerRecord fails;
    service().sendSessionId(std::string(1024, 's'), passes.handler());
    service().sendSessionId(std::string(1025, 's'), fails.handler());
    EXPECT_EQ(fails.code(), 11);
    EXPECT_EQ(log_.errors(), Calls{"Invalid session id value (1025 characters)"});
    device_.runUntilIdle();
    EXPECT_TRUE(passes.succeededOnMain());
}

TEST_F(ZRMMobileServiceEvents, SessionIdMayBeEmptyOrAbsent) {
    activate();
    service().sendSessionId("", nullptr);
    service().sendSessionId(std::nullopt, nullptr);
    EXPECT_EQ(first_->calls, (Calls{"send 3  absent absent", "send 3 absent absent absent"}));
}

TEST_F(ZRMMobileServiceEvents, TextThatIsNotUtf8IsRefusedWithItsOwnError) {
    activate();
    const std::string broken = "a\xFF";
    EXPECT_EQ(login(broken).code(), 9);
    EXPECT_EQ(login("user", broken).code(), 9);
    ZRMHandlerRecord navigation;
    service().sendUINavigationEvent(broken, navigation.handler());
    EXPECT_EQ(navigation.code(), 10);
    ZRMHandlerRecord session;
    service().sendSessionId(broken, session.handler());
    EXPECT_EQ(session.code(), 11);
    EXPECT_THAT(first_->calls, IsEmpty());
    EXPECT_EQ(log_.errors(), (Calls{"Invalid userId value (2 bytes that are no UTF-8)",
                                    "Invalid userName value (2 bytes that are no UTF-8)",
                                    "Invalid UI navigation event value (2 bytes that are no UTF-8)",
                                    "Invalid session id value (2 bytes that are no UTF-8)"}));
}

TEST_F(ZRMMobileServiceEvents, ZeroBytesAreCarried) {
    activate();
    const std::string withZero("a\0b", 3);
    service().sendSessionId(withZero, nullptr);
    EXPECT_EQ(first_->calls, Calls{"send 3 " + withZero + " absent absent"});
}

TEST_F(ZRMMobileServiceEvents, DeviceTagIsAbsentBeforeActivationAndJoinsBothTagsAfterwards) {
    EXPECT_EQ(service().deviceTag(), std::nullopt);
    activate();
    EXPECT_EQ(service().deviceTag(), "tag_secure");
    first_->running = false;
    second_->running = false;
    EXPECT_EQ(service().deviceTag(), std::nullopt);
}

TEST_F(ZRMMobileServiceEvents, PendingEventsAreNoneBeforeActivation) {
    first_->pendingEvents = 3;
    first_->unstoredEvents = 2;
    EXPECT_EQ(service().pendingEventCount(), 0u);
    EXPECT_EQ(service().unstoredEventCount(), 0u);
    activate();
    EXPECT_EQ(service().pendingEventCount(), 3u);
    EXPECT_EQ(service().unstoredEventCount(), 2u);
}
