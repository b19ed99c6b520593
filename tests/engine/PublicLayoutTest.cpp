#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

#include "engine/IterfaceContext.h"
#include "logging/IterfaceObserver.h"
#include "logging/IterfaceProduct.h"
#include "support/ClassLayout.h"

// The warning is about classes with virtual operations, whose layout this platform fixes all the
// same.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

// Hosts are built against these numbers: whoever changes one breaks them.
namespace {

TEST(PublicLayoutTest, WideStringIsThatOfTheSharedRuntime) {
    EXPECT_EQ(sizeof(std::wstring), 32u);
    EXPECT_EQ(alignof(std::wstring), 8u);
    EXPECT_EQ(sizeof(wchar_t), 2u);
}

TEST(PublicLayoutTest, ContextHasItsMembersBehindItsTable) {
    EXPECT_EQ(offsetof(IterfaceContext, lastError), 8u);
    EXPECT_EQ(offsetof(IterfaceContext, runMode), 40u);
    EXPECT_EQ(sizeof(IterfaceContext), 48u);
    EXPECT_TRUE((std::is_same_v<decltype(IterfaceContext::lastError), std::wstring>));
    EXPECT_TRUE((std::is_same_v<decltype(IterfaceContext::runMode), int32_t>));
}

TEST(PublicLayoutTest, ContextHasFiveVirtualOperationsAndNoVirtualDestructor) {
    EXPECT_EQ(slotOf(&IterfaceContext::load), 0u);
    EXPECT_EQ(slotOf(&IterfaceContext::unload), 1u);
    EXPECT_EQ(slotOf(&IterfaceContext::getProduct), 2u);
    EXPECT_EQ(slotOf(&IterfaceContext::getVariable), 3u);
    EXPECT_EQ(slotOf(&IterfaceContext::getReservedText), 4u);
    EXPECT_EQ(slotOf(&Extended<IterfaceContext>::next), 5u);
    EXPECT_EQ(slotOf(&IterfaceContext::getLastError), notVirtual);
    EXPECT_EQ(slotOf(&IterfaceContext::getRunMode), notVirtual);
    EXPECT_FALSE(std::has_virtual_destructor_v<IterfaceContext>);
}

TEST(PublicLayoutTest, ProductHasItsMembersBehindItsTable) {
    EXPECT_EQ(offsetof(IterfaceProduct, observer), 8u);
    EXPECT_EQ(offsetof(IterfaceProduct, observerData), 16u);
    EXPECT_EQ(offsetof(IterfaceProduct, progress), 24u);
    EXPECT_EQ(offsetof(IterfaceProduct, rebootRequired), 28u);
    EXPECT_EQ(offsetof(IterfaceProduct, actionInfo), 32u);
    EXPECT_EQ(offsetof(IterfaceProduct, errorInfo), 2084u);
    EXPECT_EQ(sizeof(IterfaceProduct), 5168u);
    EXPECT_TRUE((std::is_same_v<decltype(IterfaceProduct::observer), IterfaceObserver*>));
    EXPECT_TRUE((std::is_same_v<decltype(IterfaceProduct::observerData), void*>));
    EXPECT_TRUE((std::is_same_v<decltype(IterfaceProduct::progress), uint32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(IterfaceProduct::rebootRequired), bool>));
    EXPECT_EQ(sizeof(bool), 1u);
}

// A virtual destructor has two slots: one destroys, the other releases the memory as well.
TEST(PublicLayoutTest, ProductHasTwoVirtualOperationsBehindItsDestructor) {
    EXPECT_TRUE(std::has_virtual_destructor_v<IterfaceProduct>);
    EXPECT_EQ(slotOf(&IterfaceProduct::run), 2u);
    EXPECT_EQ(slotOf(&IterfaceProduct::getDirectory), 3u);
    EXPECT_EQ(slotOf(&Extended<IterfaceProduct>::next), 4u);
}

TEST(PublicLayoutTest, ObserverHasTwoVirtualOperationsAndNoVirtualDestructor) {
    EXPECT_EQ(slotOf(&IterfaceObserver::update), 0u);
    EXPECT_EQ(slotOf(&IterfaceObserver::askOnError), 1u);
    EXPECT_EQ(slotOf(&Extended<IterfaceObserver>::next), 2u);
    EXPECT_EQ(sizeof(IterfaceObserver), sizeof(void*));
    EXPECT_FALSE(std::has_virtual_destructor_v<IterfaceObserver>);
}

TEST(PublicLayoutTest, ActionInfoIsACodeAndTwoTexts) {
    EXPECT_EQ(offsetof(ActionInfo, code), 0u);
    EXPECT_EQ(offsetof(ActionInfo, text1), 4u);
    EXPECT_EQ(offsetof(ActionInfo, text2), 1028u);
    EXPECT_EQ(sizeof(ActionInfo), 2052u);
    EXPECT_TRUE((std::is_same_v<decltype(ActionInfo::code), uint32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(ActionInfo::text1), wchar_t[512]>));
    EXPECT_TRUE((std::is_same_v<decltype(ActionInfo::text2), wchar_t[512]>));
}

TEST(PublicLayoutTest, ErrorInfoIsACodeTwoTextsASystemErrorAndAMessage) {
    EXPECT_EQ(offsetof(ErrorInfo, code), 0u);
    EXPECT_EQ(offsetof(ErrorInfo, text1), 4u);
    EXPECT_EQ(offsetof(ErrorInfo, text2), 1028u);
    EXPECT_EQ(offsetof(ErrorInfo, systemError), 2052u);
    EXPECT_EQ(offsetof(ErrorInfo, message), 2056u);
    EXPECT_EQ(sizeof(ErrorInfo), 3080u);
    EXPECT_TRUE((std::is_same_v<decltype(ErrorInfo::code), uint32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(ErrorInfo::systemError), uint32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(ErrorInfo::message), wchar_t[512]>));
}

TEST(PublicLayoutTest, NumbersOfModesAnswersAndActionsAreFixed) {
    EXPECT_EQ(RUNMODE_INSTALL, 0);
    EXPECT_EQ(RUNMODE_UNINSTALL, 1);
    EXPECT_EQ(RUNMODE_UPGRADE, 2);
    EXPECT_EQ(ANSWER_RETRY, 0);
    EXPECT_EQ(ANSWER_ABORT, 1);
    EXPECT_EQ(ANSWER_IGNORE, 2);
    EXPECT_EQ(sizeof(ObserverAnswer), 4u);
    EXPECT_EQ(ERROR_CODE_MESSAGE, 1u);
    EXPECT_EQ(ACTION_CONDITION, 2u);
    EXPECT_EQ(ACTION_COPY_FILE, 3u);
    EXPECT_EQ(ACTION_DELETE_FILE, 4u);
    EXPECT_EQ(ACTION_STOP_SERVICE, 5u);
    EXPECT_EQ(ACTION_START_SERVICE, 6u);
    EXPECT_EQ(ACTION_REMOVE_SERVICE, 7u);
    EXPECT_EQ(ACTION_SHORTCUT, 8u);
    EXPECT_EQ(ACTION_CUSTOM_ACTION, 10u);
    EXPECT_EQ(ACTION_SHELL_EXCUTE, 11u);
    EXPECT_EQ(ACTION_CREATE_REGISTRY_KEY, 12u);
    EXPECT_EQ(ACTION_REMOVE_REGISTRY_KEY, 13u);
    EXPECT_EQ(ACTION_REGISTRY_VALUE, 14u);
    EXPECT_EQ(ACTION_REMOVE_DIRECTORY, 15u);
    EXPECT_EQ(ACTION_CAUTION, 16u);
}

}  // namespace
