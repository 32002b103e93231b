// What the DLL throws is the host's: to catch, to read, to show and to delete.
#include "tests/host/hosttest.h"

#include "common/io/ioexceptions.h"
#include "tests/platform/win32/presser.h"

namespace ZUNO::Tests {

TEST_F(HostTest, ShowsAnExceptionOfTheLibrary) {
    try {
        start("missing");
        FAIL() << "nothing was raised";
    } catch (Common::IO::FileNotFoundException* exception) {
        const std::string name = exception->getName().getConstCharPtr();
        EXPECT_EQ(name, "FileNotFoundException");
        Presser presser(name, IDOK);
        exception->show(0);
        EXPECT_TRUE(presser.hadButton());
        delete exception;
    }
}

} // namespace ZUNO::Tests
