#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "engine/CContext.h"
#include "support/FakeCall.h"
#include "support/LogFile.h"
#include "support/ScriptTest.h"
#include "system/SystemCalls.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

WORD nativeArchitecture;

void WINAPI tellNativeArchitecture(SYSTEM_INFO* info) {
    info->wProcessorArchitecture = nativeArchitecture;
}

class ContextVariablesTest : public ScriptTest {
protected:
    int32_t intOf(const wchar_t* name) { return context.findVariable(name)->getInt(); }

    std::wstring stringOf(const wchar_t* name) { return context.findVariable(name)->getString(); }
};

TEST_F(ContextVariablesTest, BuiltInOnesAreConstIntegersWithoutAnElement) {
    ASSERT_TRUE(loadProduct(""));

    for (const wchar_t* name : {L"OS_BIT", L"OS_MAJOR_VERSION", L"OS_MINOR_VERSION"}) {
        const CVariable* variable = context.findVariable(name);
        ASSERT_NE(variable, nullptr);
        EXPECT_EQ(variable->type, VARIABLE_INT);
        EXPECT_TRUE(variable->isConst);
        EXPECT_EQ(variable->element, nullptr);
    }
}

TEST_F(ContextVariablesTest, OsBitIsTheNativeWidthOfTheProcessor) {
    constexpr std::pair<WORD, int32_t> rows[] = {{9, 64}, {6, 64}, {0, 32}, {5, 32}, {12, 32}};
    FakeCall<systemCalls, &SystemCalls::GetProcAddress> find([](auto...) {
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&tellNativeArchitecture));
    });
    for (const auto& [architecture, width] : rows) {
        SCOPED_TRACE(architecture);
        nativeArchitecture = architecture;
        ASSERT_TRUE(loadProduct(""));
        EXPECT_EQ(intOf(L"OS_BIT"), width);
        context.unload();
    }
}

TEST_F(ContextVariablesTest, OsBitIs32WhereTheSystemCannotTell) {
    FakeCall<systemCalls, &SystemCalls::GetProcAddress> find(
        [](auto...) -> FARPROC { return nullptr; });

    ASSERT_TRUE(loadProduct(""));

    EXPECT_EQ(intOf(L"OS_BIT"), 32);
}

TEST_F(ContextVariablesTest, OsBitComesFromTheKernelLibrary) {
    std::wstring library;
    std::string function;
    HMODULE searched = nullptr;
    FakeCall<systemCalls, &SystemCalls::GetModuleHandleW> getModule([&](const wchar_t* name) {
        library = name;
        return getModule.real(name);
    });
    FakeCall<systemCalls, &SystemCalls::GetProcAddress> find([&](HMODULE module, const char* name) {
        searched = module;
        function = name;
        return find.real(module, name);
    });

    ASSERT_TRUE(loadProduct(""));

    EXPECT_EQ(library, L"kernel32.dll");
    EXPECT_EQ(function, "GetNativeSystemInfo");
    EXPECT_EQ(searched, GetModuleHandleW(L"kernel32.dll"));
    EXPECT_EQ(intOf(L"OS_BIT"), 64);
}

TEST_F(ContextVariablesTest, VersionIsAskedWithAZeroedExtendedRecord) {
    std::vector<DWORD> sizes;
    bool zeroed = false;
    FakeCall<systemCalls, &SystemCalls::GetVersionExW> version([&](OSVERSIONINFOW* info) {
        sizes.push_back(info->dwOSVersionInfoSize);
        const auto* bytes = reinterpret_cast<const char*>(info);
        zeroed = std::all_of(bytes + sizeof(DWORD), bytes + info->dwOSVersionInfoSize,
                             [](char byte) { return byte == 0; });
        info->dwMajorVersion = 10;
        info->dwMinorVersion = 3;
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return TRUE;
    });
    const LogFile log;

    ASSERT_TRUE(loadProduct(""));

    EXPECT_THAT(sizes, ElementsAre(284u));
    EXPECT_TRUE(zeroed);
    EXPECT_EQ(intOf(L"OS_MAJOR_VERSION"), 10);
    EXPECT_EQ(intOf(L"OS_MINOR_VERSION"), 3);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ContextVariablesTest, VersionIsAskedAgainWithThePlainRecord) {
    std::vector<DWORD> sizes;
    FakeCall<systemCalls, &SystemCalls::GetVersionExW> version([&](OSVERSIONINFOW* info) {
        sizes.push_back(info->dwOSVersionInfoSize);
        info->dwMajorVersion = static_cast<DWORD>(sizes.size());
        info->dwMinorVersion = 9;
        return sizes.size() == 2;
    });
    const LogFile log;

    ASSERT_TRUE(loadProduct(""));

    EXPECT_THAT(sizes, ElementsAre(284u, 276u));
    EXPECT_EQ(intOf(L"OS_MAJOR_VERSION"), 2);
    EXPECT_EQ(intOf(L"OS_MINOR_VERSION"), 9);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ContextVariablesTest, UnknownVersionFailsTheLoad) {
    FakeCall<systemCalls, &SystemCalls::GetVersionExW> version([](auto...) { return FALSE; });
    const LogFile log;

    EXPECT_FALSE(loadProduct("", "<Variable Id='V' Type='string'/>"));

    EXPECT_EQ(version.count, 2);
    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] Can't get OS version."));
    EXPECT_EQ(context.getLastError(), L"Can't get OS Version.");
    EXPECT_EQ(context.findVariable(L"OS_BIT"), nullptr);
    EXPECT_EQ(context.getProduct(), nullptr);
}

TEST_F(ContextVariablesTest, ScriptNeedsNone) {
    const LogFile log;

    EXPECT_TRUE(loadProduct(""));

    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ContextVariablesTest, TypeChoosesTheKindAndTheNameOfTheElementWhetherItIsConst) {
    struct Row {
        const wchar_t* name;
        VariableType type;
        bool isConst;
    };
    ASSERT_TRUE(loadProduct("",
                            "<Variable Id='S' Type='string' Value='1'/>"
                            "<VariableConst Id='SC' Type='string' Value='1'/>"
                            "<Variable Id='N' Type='int' Value='1'/>"
                            "<VariableConst Id='NC' Type='int' Value='1'/>"));

    for (const Row& row : {Row{L"S", VARIABLE_STRING, false}, Row{L"SC", VARIABLE_STRING, true},
                           Row{L"N", VARIABLE_INT, false}, Row{L"NC", VARIABLE_INT, true}}) {
        const CVariable* variable = context.findVariable(row.name);
        ASSERT_NE(variable, nullptr);
        EXPECT_EQ(variable->type, row.type);
        EXPECT_EQ(variable->isConst, row.isConst);
        EXPECT_NE(variable->element, nullptr);
    }
    EXPECT_EQ(stringOf(L"S"), L"1");
    EXPECT_EQ(intOf(L"N"), 1);
}

TEST_F(ContextVariablesTest, OnlyChildrenOfTheRootAreVariables) {
    ASSERT_TRUE(
        load("<Root><Product><Variable Id='A' Type='string' Value=''/></Product>"
             "<Group><Variable Id='B' Type='string' Value=''/></Group></Root>"));

    EXPECT_EQ(context.findVariable(L"A"), nullptr);
    EXPECT_EQ(context.findVariable(L"B"), nullptr);
}

TEST_F(ContextVariablesTest, OtherNamesArePassedOver) {
    ASSERT_TRUE(loadProduct("",
                            "<variable Id='A' Type='string' Value=''/>"
                            "<VariableConsts Id='B' Type='string' Value=''/>"
                            "<Const Id='C' Type='string' Value=''/>"
                            "<Variable Id='D' Type='string' Value='d'/>"));

    EXPECT_EQ(context.findVariable(L"A"), nullptr);
    EXPECT_EQ(context.findVariable(L"B"), nullptr);
    EXPECT_EQ(context.findVariable(L"C"), nullptr);
    EXPECT_EQ(stringOf(L"D"), L"d");
}

TEST_F(ContextVariablesTest, FirstOfEqualNamesIsFound) {
    ASSERT_TRUE(loadProduct("",
                            "<Variable Id='V' Type='string' Value='first'/>"
                            "<VariableConst Id='V' Type='int' Value='2'/>"));

    EXPECT_EQ(stringOf(L"V"), L"first");
}

TEST_F(ContextVariablesTest, NamesAreComparedExactly) {
    ASSERT_TRUE(loadProduct("",
                            "<Variable Id='a' Type='string' Value='small'/>"
                            "<Variable Id='A' Type='string' Value='large'/>"));

    EXPECT_EQ(stringOf(L"a"), L"small");
    EXPECT_EQ(stringOf(L"A"), L"large");
    EXPECT_EQ(context.findVariable(L"os_bit"), nullptr);
}

TEST_F(ContextVariablesTest, BuiltInOnesCannotBeShadowed) {
    ASSERT_TRUE(loadProduct("",
                            "<Variable Id='OS_BIT' Type='int' Value='1'/>"
                            "<Variable Id='OS_MINOR_VERSION' Type='string' Value='x'/>"));

    EXPECT_EQ(intOf(L"OS_BIT"), 64);
    EXPECT_EQ(context.findVariable(L"OS_MINOR_VERSION")->element, nullptr);
}

TEST_F(ContextVariablesTest, UnknownTypeDropsTheVariableWithALine) {
    const LogFile log;

    ASSERT_TRUE(loadProduct("",
                            "<VariableConst Id='A' Type='Int' Value='1'/>"
                            "<Variable Type='' Value='1'/>"
                            "<Variable Id='C' Type='string' Value='c'/>"));

    EXPECT_THAT(log.lines(), ElementsAre("[WARNNING] (VariableConst,A) unknown variable type.",
                                         "[WARNNING] (Variable,) unknown variable type."));
    EXPECT_EQ(context.findVariable(L"A"), nullptr);
    EXPECT_EQ(stringOf(L"C"), L"c");
    EXPECT_EQ(context.getLastError(), L"");
}

TEST_F(ContextVariablesTest, MissingAttributesFailTheLoad) {
    constexpr std::pair<const char*, const wchar_t*> rows[] = {
        {"<Variable Id='V' Type='int'/>",
         L"Create Element error:(Variable,V) cant get the require explicit Valueattribute."},
        {"<VariableConst Id='V' Value='1'/>",
         L"Create Element error:(VariableConst,V) cant get the require explicit Typeattribute."},
        {"<Variable/>",
         L"Create Element error:(Variable,) cant get the require explicit Valueattribute."}};
    for (const auto& [variable, message] : rows) {
        EXPECT_FALSE(loadProduct("", variable));
        EXPECT_EQ(context.getLastError(), message);
        EXPECT_EQ(context.findVariable(L"OS_BIT"), nullptr);
        EXPECT_EQ(context.getProduct(), nullptr);
    }
}

TEST_F(ContextVariablesTest, FirstFailureEndsTheirMaking) {
    const LogFile log;

    EXPECT_FALSE(loadProduct("",
                             "<Variable Id='A' Type='string'/>"
                             "<Variable Id='B' Type='other' Value=''/>"
                             "<Variable Id='C' Value=''/>"));

    EXPECT_EQ(context.getLastError(),
              L"Create Element error:(Variable,A) cant get the require explicit Valueattribute.");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ContextVariablesTest, FailedLoadLeavesNoneToTheNext) {
    {
        FakeCall<systemCalls, &SystemCalls::GetProcAddress> find(
            [](auto...) -> FARPROC { return nullptr; });
        EXPECT_FALSE(loadProduct("",
                                 "<Variable Id='A' Type='string' Value='old'/>"
                                 "<Variable Id='B' Type='string'/>"));
    }
    ASSERT_TRUE(loadProduct("", "<Variable Id='A' Type='string' Value='new'/>"));

    EXPECT_EQ(intOf(L"OS_BIT"), 64);
    EXPECT_EQ(stringOf(L"A"), L"new");
}

}  // namespace
