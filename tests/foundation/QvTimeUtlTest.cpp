#include "foundation/utl/QvTimeUtl.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <limits>
#include <optional>

#include "foundation/utl/Exceptions.h"

namespace {

/// Sets the local time zone for one test.
class TimeZone {
  public:
    explicit TimeZone(const char* zone) {
        if (const char* const before = std::getenv("TZ")) {
            before_ = before;
        }
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;
    ~TimeZone() {
        if (before_) {
            ::setenv("TZ", before_->c_str(), 1);
        } else {
            ::unsetenv("TZ");
        }
        ::tzset();
    }

  private:
    std::optional<std::string> before_;
};

}  // namespace

TEST(QvTimeUtl, EpochInUniversalTime) {
    const TimeZone zone("UTC0");
    EXPECT_EQ(QvTimeUtl::FormatLocal(0, "%Y-%m-%d %H:%M:%S"), "1970-01-01 00:00:00");
}

TEST(QvTimeUtl, TimeIsLocal) {
    const TimeZone zone("XYZ-05:30");  // five and a half hours ahead of universal time
    EXPECT_EQ(QvTimeUtl::FormatLocal(0, "%H:%M"), "05:30");
}

TEST(QvTimeUtl, LeapDay) {
    const TimeZone zone("UTC0");
    EXPECT_EQ(QvTimeUtl::FormatLocal(951782400, "%d.%m.%Y"), "29.02.2000");
}

TEST(QvTimeUtl, TimesBefore1970) {
    const TimeZone zone("UTC0");
    EXPECT_EQ(QvTimeUtl::FormatLocal(-1, "%Y-%m-%d %H:%M:%S"), "1969-12-31 23:59:59");
}

TEST(QvTimeUtl, EmptyFormatGivesEmptyText) {
    EXPECT_EQ(QvTimeUtl::FormatLocal(0, ""), "");
}

TEST(QvTimeUtl, LongTextIsComplete) {
    const TimeZone zone("UTC0");
    EXPECT_EQ(QvTimeUtl::FormatLocal(0, std::string(5000, 'x').c_str()), std::string(5000, 'x'));
}

TEST(QvTimeUtl, TimeWithoutADateIsRefused) {
    EXPECT_THROW(
        static_cast<void>(QvTimeUtl::FormatLocal(std::numeric_limits<long long>::max(), "%Y")),
        InvalidOperationException);
}

TEST(QvTimeUtl, TextWithoutEndIsRefused) {
    EXPECT_THROW(static_cast<void>(QvTimeUtl::FormatLocal(0, std::string(100000, 'x').c_str())),
                 InvalidOperationException);
}
