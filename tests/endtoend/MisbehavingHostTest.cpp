// Hosts that do what they shouldn't, and what they may rely on all the same.

#include <gmock/gmock.h>
#include <windows.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>

#include "support/HostTest.h"
#include "support/LogFile.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

namespace {

/// An observer that does as a test says, and then what RecordingObserver does.
class ActingObserver final : public IterfaceObserver {
public:
    void update(IterfaceProduct* product) override {
        recorded.update(product);
        if (onUpdate)
            onUpdate();
    }
    ObserverAnswer askOnError(ErrorInfo* error) override {
        const ObserverAnswer answer = recorded.askOnError(error);
        if (onAsk)
            onAsk();
        return answer;
    }

    std::function<void()> onUpdate;
    std::function<void()> onAsk;
    RecordingObserver recorded;
};

/// A condition, a file that can be had, and one that can't.
class MisbehavingHostTest : public HostTest {
protected:
    MisbehavingHostTest() {
        EXPECT_TRUE(load(
            "<Script><Variable Id='V' Type='string' Value='a text'/><Variable Id='N' Type='int'"
            " Value='1'/><Product><Directory Id='D' Path='" +
            narrow(app()) + "'><Component Id='C'><Condition Expression='N E 1'>" +
            file(L"a.txt", "a") + "<File Name='b.txt' Source='absent'/>" + file(L"c.txt", "c") +
            "</Condition></Component></Directory><InstallExecuteSequence><Feature>"
            "<ComponentRef Id='C'/></Feature></InstallExecuteSequence></Product></Script>"));
        context->runMode = RUNMODE_INSTALL;
        product().observer = &acting;
    }

    int32_t runOnce() { return product().run(context); }

    /// The run that a host in order would have had.
    void expectOrdinaryRun() {
        ActingObserver ordinary;
        ordinary.recorded.answers = {ANSWER_IGNORE};
        product().observer = &ordinary;
        EXPECT_EQ(runOnce(), 0);
        product().observer = nullptr;
        EXPECT_THAT(ordinary.recorded.updates, SizeIs(4));
        EXPECT_THAT(ordinary.recorded.failures, SizeIs(1));
        EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a"), Pair(L"c.txt", "c")));
    }

    ActingObserver acting;
    const LogFile log;
};

TEST_F(MisbehavingHostTest, WhatAnUpdateThrowsLeavesTheRunThere) {
    for (const size_t updates : {1u, 2u, 3u}) {
        SCOPED_TRACE(updates);
        acting.recorded = {};
        acting.onUpdate = [&] {
            if (acting.recorded.updates.size() == updates)
                throw std::runtime_error("of the host");
        };
        product().observer = &acting;

        EXPECT_THROW(runOnce(), std::runtime_error);

        EXPECT_THAT(acting.recorded.updates, SizeIs(updates));
    }
    expectOrdinaryRun();
}

// The engine's own messages are texts, too. It takes none of the host's for one of these.
TEST_F(MisbehavingHostTest, TextsThatAnObserverThrowsAreNoMessagesOfTheEngine) {
    acting.onUpdate = [] { throw std::wstring(L"of the host"); };
    EXPECT_THROW(runOnce(), std::wstring);
    EXPECT_STREQ(product().errorInfo.message, L"");

    acting.onUpdate = nullptr;
    acting.onAsk = [] { throw std::wstring(L"of the host"); };
    EXPECT_THROW(runOnce(), std::wstring);
    EXPECT_EQ(product().errorInfo.code, ACTION_COPY_FILE);

    expectOrdinaryRun();
}

TEST_F(MisbehavingHostTest, ScriptCanBeUnloadedBehindAThrownException) {
    acting.onUpdate = [] { throw 1; };
    EXPECT_THROW(runOnce(), int);

    EXPECT_TRUE(context->unload());
    EXPECT_EQ(context->getProduct(), nullptr);
    ASSERT_TRUE(load(componentScript(file(L"d.txt", "d"))));
    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"d.txt", "d")));
}

TEST_F(MisbehavingHostTest, QuestionsFromInsideChangeNothingButTheirAnswers) {
    const auto ask = [this] {
        std::wstring text;
        EXPECT_TRUE(product().getDirectory(text, L"D", context));
        EXPECT_EQ(text, app() + L"\\");
        EXPECT_TRUE(context->getVariable(text, L"V"));
        EXPECT_EQ(text, L"a text");
        EXPECT_FALSE(context->getVariable(text, L"N"));
        EXPECT_EQ(context->getLastError(), L"It doesn't support getString method.");
        EXPECT_EQ(context->getReservedText(), L"");
        EXPECT_EQ(context->getRunMode(), RUNMODE_INSTALL);
    };
    acting.onUpdate = ask;
    acting.onAsk = ask;
    acting.recorded.answers = {ANSWER_RETRY, ANSWER_IGNORE};

    EXPECT_EQ(runOnce(), 0);

    EXPECT_THAT(acting.recorded.updates, SizeIs(5));
    EXPECT_THAT(acting.recorded.failures, SizeIs(2));
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a"), Pair(L"c.txt", "c")));
}

// The record of the last failure is one, and a directory that isn't there is a failure.
TEST_F(MisbehavingHostTest, FailedQuestionFromInsideTakesTheRecordOfTheFailure) {
    acting.onAsk = [this] {
        std::wstring text = L"as it was";
        EXPECT_FALSE(product().getDirectory(text, L"none", context));
        EXPECT_EQ(text, L"as it was");
    };

    EXPECT_EQ(runOnce(), int32_t{ERROR_FILE_NOT_FOUND});

    EXPECT_EQ(product().errorInfo.code, ERROR_CODE_MESSAGE);
    EXPECT_STREQ(product().errorInfo.message, L"Get directory error:can't get the none directory");
}

TEST_F(MisbehavingHostTest, LoadFromInsideIsRefused) {
    acting.onUpdate = [this] { EXPECT_FALSE(load(componentScript(file(L"d.txt", "d")))); };
    acting.recorded.answers = {ANSWER_IGNORE};

    EXPECT_EQ(runOnce(), 0);

    EXPECT_EQ(context->getLastError(), L"It have already loaded.");
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a"), Pair(L"c.txt", "c")));
}

TEST_F(MisbehavingHostTest, ObserverThatTakesItselfAwayHearsNoMore) {
    acting.onUpdate = [this] { product().observer = nullptr; };

    EXPECT_EQ(runOnce(), int32_t{ERROR_FILE_NOT_FOUND});

    EXPECT_THAT(acting.recorded.updates, SizeIs(1));
    EXPECT_THAT(acting.recorded.failures, IsEmpty());
    const std::string unheard = "[WARNNING] Observer is NULL in subject.";
    EXPECT_THAT(log.lines(),
                ElementsAre("[INFO] N E 1 expression value:true", unheard, unheard, unheard));
}

TEST_F(MisbehavingHostTest, ObserverThatTakesItselfAwayWhenAskedIsHeardOnce) {
    acting.onAsk = [this] { product().observer = nullptr; };
    acting.recorded.answers = {ANSWER_RETRY};

    EXPECT_EQ(runOnce(), int32_t{ERROR_FILE_NOT_FOUND});

    EXPECT_THAT(acting.recorded.failures, SizeIs(1));
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a")));
}

TEST_F(MisbehavingHostTest, ObserverThatPutsAnotherInItsPlaceIsReplacedAtOnce) {
    observer.answers = {ANSWER_IGNORE};
    acting.onUpdate = [this] { product().observer = &observer; };

    EXPECT_EQ(runOnce(), 0);

    EXPECT_THAT(acting.recorded.updates, SizeIs(1));
    EXPECT_THAT(observer.updates, SizeIs(3));
    EXPECT_THAT(observer.failures, SizeIs(1));
}

TEST_F(MisbehavingHostTest, ObserverMayEndItsLifeInItsOwnCall) {
    class Passing final : public IterfaceObserver {
    public:
        Passing(IterfaceProduct& product, bool& gone) : product(product), gone(gone) {}
        ~Passing() { gone = true; }

        void update(IterfaceProduct*) override {
            product.observer = nullptr;
            delete this;
        }
        ObserverAnswer askOnError(ErrorInfo*) override { return ANSWER_ABORT; }

    private:
        IterfaceProduct& product;
        bool& gone;
    };
    bool gone = false;
    product().observer = std::make_unique<Passing>(product(), gone).release();

    EXPECT_EQ(runOnce(), int32_t{ERROR_FILE_NOT_FOUND});

    EXPECT_TRUE(gone);
    expectOrdinaryRun();
}

TEST_F(MisbehavingHostTest, NumbersThatAreNoAnswersEndTheRun) {
    for (const int32_t answer : {-1, 3, INT32_MIN, INT32_MAX}) {
        SCOPED_TRACE(answer);
        acting.recorded = {};
        acting.recorded.answers = {answer};

        EXPECT_EQ(runOnce(), int32_t{ERROR_FILE_NOT_FOUND});

        EXPECT_THAT(acting.recorded.failures, SizeIs(1));
    }
}

// A context belongs to one thread at a time, whichever that is.
TEST_F(MisbehavingHostTest, ContextGoesFromThreadToThread) {
    const std::wstring script = folder.write(L"other.xml", componentScript(file(L"d.txt", "d")));
    const auto onThread = [](auto work) { std::thread(work).join(); };
    IterfaceContext* other = nullptr;
    int32_t result = -1;

    onThread([&] { other = CreateContextObject(); });
    onThread([&] { EXPECT_TRUE(other->load(script.c_str())); });
    other->runMode = RUNMODE_INSTALL;
    onThread([&] { result = other->getProduct()->run(other); });
    EXPECT_EQ(result, 0);
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"d.txt", "d")));
    onThread([&] { other->runMode = RUNMODE_UNINSTALL; });
    EXPECT_EQ(other->getProduct()->run(other), 0);
    EXPECT_THAT(installedFiles(), IsEmpty());
    onThread([&] { EXPECT_TRUE(other->unload()); });
    onThread([&] { FreeContextObject(other); });
}

// Two may be there at once, and are used one after the other.
TEST_F(MisbehavingHostTest, ContextsDoNotDisturbEachOther) {
    IterfaceContext* const other = CreateContextObject();
    const std::wstring script = folder.write(
        L"other.xml", "<S><Variable Id='V' Type='string' Value='another'/><Product/></S>");
    EXPECT_FALSE(other->load(L"missing.xml"));
    EXPECT_TRUE(other->load(script.c_str()));
    std::wstring value;

    EXPECT_TRUE(context->getVariable(value, L"V"));
    EXPECT_EQ(value, L"a text");
    EXPECT_TRUE(other->getVariable(value, L"V"));
    EXPECT_EQ(value, L"another");
    EXPECT_TRUE(other->unload());
    FreeContextObject(other);

    expectOrdinaryRun();
}

}  // namespace
