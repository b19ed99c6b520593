#include "host/Services.h"

#include <gmock/gmock.h>

#include "support/FakeCall.h"
#include "support/Requirements.h"
#include "support/TestService.h"

namespace {

TEST(ServicesTest, NameTheDependantsThatRun) {
    REQUIRES_WINE("installs a service");
    const TestService service;
    wchar_t first[] = L"Mailer";
    wchar_t second[] = L"Printer";
    int questions = 0;
    const FakeCall<dependantCalls, &DependantCalls::EnumDependentServicesW> list(
        [&](SC_HANDLE handle, DWORD state, ENUM_SERVICE_STATUSW* services, DWORD size,
            DWORD* needed, DWORD* count) -> BOOL {
            SERVICE_STATUS status{};
            EXPECT_FALSE(QueryServiceStatus(handle, &status));  // nothing else may be asked
            EXPECT_EQ(state, DWORD{SERVICE_ACTIVE});
            *needed = 2 * sizeof *services;
            if (++questions == 1)
                return FALSE;
            EXPECT_EQ(size, *needed);
            services[0].lpServiceName = first;
            services[1].lpServiceName = second;
            *count = 2;
            return TRUE;
        });

    EXPECT_EQ(runningDependantsOf(service.name()), L"Mailer, Printer");
}

TEST(ServicesTest, NameNobodyWhereTheListCannotBeHad) {
    REQUIRES_WINE("installs a service");
    const TestService service;
    const FakeCall<dependantCalls, &DependantCalls::EnumDependentServicesW> list(
        [](SC_HANDLE, DWORD, ENUM_SERVICE_STATUSW*, DWORD, DWORD* needed, DWORD*) -> BOOL {
            *needed = sizeof(ENUM_SERVICE_STATUSW);
            return FALSE;
        });

    EXPECT_EQ(runningDependantsOf(service.name()), L"");
    EXPECT_EQ(list.count, 2);
}

TEST(ServicesTest, NameNobodyWhereNoneDependsOnTheServiceOrThereIsNone) {
    EXPECT_EQ(runningDependantsOf(L"temz-lacking"), L"");
    REQUIRES_WINE("installs a service");
    const TestService service;
    EXPECT_EQ(runningDependantsOf(service.name()), L"");
}

}  // namespace
