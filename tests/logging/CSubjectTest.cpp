#include "logging/CSubject.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <cstring>
#include <new>
#include <stdexcept>

#include "support/LogFile.h"
#include "support/ScriptTest.h"
#include "system/TextFields.h"

using testing::ElementsAre;
using testing::ExitedWithCode;
using testing::IsEmpty;
using testing::Return;
using testing::StrictMock;

namespace {

constexpr char noObserver[] = "[WARNNING] Observer is NULL in subject.";

class Subject final : public CSubject {
public:
    int32_t run(IterfaceContext*) override { return 0; }
    bool getDirectory(std::wstring&, const wchar_t*, IterfaceContext*) override { return false; }
};

class MockObserver : public IterfaceObserver {
public:
    MOCK_METHOD(void, update, (IterfaceProduct*), (override));
    MOCK_METHOD(ObserverAnswer, askOnError, (ErrorInfo*), (override));
};

template <class Record>
bool isZero(const Record& record) {
    const Record zero{};
    return std::memcmp(&record, &zero, sizeof record) == 0;
}

ActionInfo makeAction(uint32_t code, const wchar_t* text1, const wchar_t* text2) {
    ActionInfo action{};
    action.code = code;
    copyBounded(action.text1, text1);
    copyBounded(action.text2, text2);
    return action;
}

class CSubjectTest : public testing::Test {
protected:
    /// Fills every member with something.
    void fill() {
        subject.observer = &observer;
        subject.observerData = this;
        subject.progress = 50;
        subject.rebootRequired = true;
        std::memset(&subject.actionInfo, 'a', sizeof subject.actionInfo);
        std::memset(&subject.errorInfo, 'e', sizeof subject.errorInfo);
    }

    void expectError(uint32_t code, const std::wstring& text1, const std::wstring& text2,
                     uint32_t systemError, const std::wstring& message) const {
        const ErrorInfo& error = subject.errorInfo;
        EXPECT_EQ(error.code, code);
        EXPECT_EQ(error.text1, text1);
        EXPECT_EQ(error.text2, text2);
        EXPECT_EQ(error.systemError, systemError);
        EXPECT_EQ(error.message, message);
    }

    const LogFile log;
    StrictMock<MockObserver> observer;
    Subject subject;
};

TEST_F(CSubjectTest, BeginsWithNothing) {
    alignas(Subject) unsigned char memory[sizeof(Subject)];
    std::memset(memory, 0xCC, sizeof memory);
    auto* const made = new (memory) Subject;

    EXPECT_EQ(made->observer, nullptr);
    EXPECT_EQ(made->observerData, nullptr);
    EXPECT_EQ(made->progress, 0u);
    EXPECT_FALSE(made->rebootRequired);
    EXPECT_TRUE(isZero(made->actionInfo));
    EXPECT_TRUE(isZero(made->errorInfo));
    made->~Subject();
}

TEST_F(CSubjectTest, ObserverSeesTheActionTheProgressAndTheLastFailure) {
    subject.observer = &observer;
    subject.setErrorInfo(3, L"failed", 5);
    EXPECT_CALL(observer, update(&subject)).WillOnce([this](IterfaceProduct* product) {
        EXPECT_EQ(product->actionInfo.code, 15u);
        EXPECT_STREQ(product->actionInfo.text1, L"path");
        EXPECT_STREQ(product->actionInfo.text2, L"title");
        EXPECT_EQ(product->progress, 33u);
        expectError(3, L"failed", L"", 5, L"");
    });

    subject.setActionInfo(makeAction(15, L"path", L"title"), 33);

    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CSubjectTest, LaterActionReplacesTheEarlierOne) {
    subject.setActionInfo(makeAction(15, L"path", L"title"), 33);
    subject.setActionInfo(makeAction(16, L"", L"t"), 20);

    EXPECT_EQ(subject.actionInfo.code, 16u);
    EXPECT_STREQ(subject.actionInfo.text1, L"");
    EXPECT_STREQ(subject.actionInfo.text2, L"t");
    EXPECT_EQ(subject.progress, 20u);
}

TEST_F(CSubjectTest, ItsOwnActionRecordStaysAsItIsAndIsAnnounced) {
    subject.observer = &observer;
    subject.actionInfo = makeAction(2, L"A E 1", L"second");
    EXPECT_CALL(observer, update(&subject));

    subject.setActionInfo(subject.actionInfo, 70);

    EXPECT_EQ(subject.actionInfo.code, 2u);
    EXPECT_STREQ(subject.actionInfo.text1, L"A E 1");
    EXPECT_STREQ(subject.actionInfo.text2, L"second");
    EXPECT_EQ(subject.progress, 70u);
}

TEST_F(CSubjectTest, ErrorTextIsTheWholeRecord) {
    fill();

    subject.setErrorText(L"what failed");

    expectError(1, L"", L"", 0, L"what failed");
}

TEST_F(CSubjectTest, ErrorInfoHasAllThatIsGiven) {
    fill();

    subject.setErrorInfo(11, L"program", 0xFFFFFFFF, L"parameters", L"Not found.\r\n");

    expectError(11, L"program", L"parameters", 0xFFFFFFFF, L"Not found.\r\n");
}

TEST_F(CSubjectTest, ErrorInfoIsEmptyWhereNothingIsGiven) {
    fill();
    subject.setErrorInfo(4, L"name", 0);
    expectError(4, L"name", L"", 0, L"");

    fill();
    subject.setErrorInfo(4, L"", 2, nullptr, L"message");
    expectError(4, L"", L"", 2, L"message");
}

TEST_F(CSubjectTest, ErrorTextsAreCutTo511Characters) {
    const std::wstring most(511, L'x');
    for (const std::wstring& text : {most, most + L"y", most + most}) {
        SCOPED_TRACE(text.size());
        fill();
        subject.setErrorInfo(7, text, 1, text.c_str(), text.c_str());
        expectError(7, most, most, 1, most);

        fill();
        subject.setErrorText(text);
        expectError(1, L"", L"", 0, most);
    }
}

TEST_F(CSubjectTest, RestartStaysRequiredWhateverIsReportedLater) {
    subject.setRebootRequired();
    subject.setActionInfo({}, 0);
    subject.setErrorText(L"");

    EXPECT_TRUE(subject.rebootRequired);
}

TEST_F(CSubjectTest, ClearingLeavesNothingOfARunAndKeepsWhatIsTheHosts) {
    fill();

    EXPECT_EQ(subject.clearRunState(), 0);

    EXPECT_EQ(subject.progress, 0u);
    EXPECT_FALSE(subject.rebootRequired);
    EXPECT_TRUE(isZero(subject.actionInfo));
    EXPECT_TRUE(isZero(subject.errorInfo));
    EXPECT_EQ(subject.observer, &observer);
    EXPECT_EQ(subject.observerData, this);
}

TEST_F(CSubjectTest, NotifiesItsObserver) {
    subject.observer = &observer;
    EXPECT_CALL(observer, update(&subject));

    subject.notifyObserver();

    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CSubjectTest, LogsThatNobodyIsNotified) {
    fill();
    subject.observer = nullptr;

    subject.notifyObserver();
    subject.setActionInfo(subject.actionInfo, 50);

    EXPECT_THAT(log.lines(), ElementsAre(noObserver, noObserver));
}

TEST_F(CSubjectTest, GivesTheAnswerOfItsObserverUnchanged) {
    subject.observer = &observer;
    ErrorInfo error{};
    for (const int32_t answer : {0, 1, 2, 3, -1}) {
        EXPECT_CALL(observer, askOnError(&error))
            .WillOnce(Return(static_cast<ObserverAnswer>(answer)));

        EXPECT_EQ(subject.askObserver(&error), answer);
    }
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CSubjectTest, LogsThatNobodyAnswersAndAborts) {
    EXPECT_EQ(subject.askObserver(&subject.errorInfo), ANSWER_ABORT);

    EXPECT_THAT(log.lines(), ElementsAre(noObserver));
}

/// What a host meets while a script runs.
class ObservedRunTest : public ScriptTest {
protected:
    /// Loads a product that copies a missing file and then cautions.
    void loadFailing() {
        ASSERT_TRUE(
            loadProduct("<Directory Path='C:\\temz-tests'><Component Id='C'>"
                        "<File Name='f' Source='missing'/></Component></Directory>"
                        "<InstallExecuteSequence><Feature><ComponentRef Id='C'/></Feature>"
                        "<Fragment><Caution Title='t'/></Fragment></InstallExecuteSequence>"));
    }

    void loadCaution(const std::string& title) {
        ASSERT_TRUE(loadProduct("<InstallExecuteSequence><Fragment><Caution Title='" + title +
                                "'/></Fragment></InstallExecuteSequence>"));
    }

    /// Runs the loaded script with this observer, or with none.
    int32_t runWith(IterfaceObserver* other) {
        context.runMode = RUNMODE_INSTALL;
        context.getProduct()->observer = other;
        return context.getProduct()->run(&context);
    }

    const LogFile log;
};

TEST_F(ObservedRunTest, GoesOnWithoutAnObserver) {
    loadCaution("t");

    EXPECT_EQ(runWith(nullptr), 0);

    EXPECT_EQ(context.getProduct()->actionInfo.code, ACTION_CAUTION);
    EXPECT_THAT(log.lines(), ElementsAre(noObserver));
}

TEST_F(ObservedRunTest, EndsAtAVitalFailureWithoutAnObserver) {
    loadFailing();

    EXPECT_EQ(runWith(nullptr), int32_t{ERROR_FILE_NOT_FOUND});

    EXPECT_EQ(context.getProduct()->actionInfo.code, ACTION_COPY_FILE);
    EXPECT_EQ(context.getProduct()->errorInfo.code, ACTION_COPY_FILE);
}

TEST_F(ObservedRunTest, FailureIsGoneFromTheRecordAtTheNextAction) {
    loadFailing();
    StrictMock<MockObserver> watching;
    const testing::InSequence inSequence;
    EXPECT_CALL(watching, update);
    EXPECT_CALL(watching, askOnError(&context.getProduct()->errorInfo))
        .WillOnce([](ErrorInfo* error) {
            EXPECT_EQ(error->code, ACTION_COPY_FILE);
            EXPECT_STREQ(error->text1, L"f");
            return ANSWER_IGNORE;
        });
    EXPECT_CALL(watching, update).WillOnce([](IterfaceProduct* product) {
        EXPECT_EQ(product->actionInfo.code, ACTION_CAUTION);
        EXPECT_EQ(product->errorInfo.code, 1u);
        EXPECT_STREQ(product->errorInfo.text1, L"");
        EXPECT_STREQ(product->errorInfo.message, L"");
    });

    EXPECT_EQ(runWith(&watching), 0);
}

TEST_F(ObservedRunTest, LetsAnExceptionOfTheObserverThrough) {
    loadCaution("t");
    StrictMock<MockObserver> throwing;
    EXPECT_CALL(throwing, update).WillOnce(testing::Throw(std::runtime_error("of the host")));

    EXPECT_THROW(runWith(&throwing), std::runtime_error);
}

TEST_F(ObservedRunTest, ActionTextThatDoesNotFitEndsTheProcess) {
    loadCaution(std::string(511, 'x'));
    EXPECT_EQ(runWith(nullptr), 0);
    EXPECT_EQ(context.getProduct()->actionInfo.text2, std::wstring(511, L'x'));
    context.unload();

    loadCaution(std::string(512, 'x'));
    EXPECT_EXIT(runWith(nullptr), ExitedWithCode(static_cast<int>(0xC0000417)), "");
}

}  // namespace
