// Status codes, their texts and the exception that carries them: the texts reach users through log lines.
#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <type_traits>

#include "host/TQSVException.h"
#include "host/TQSVStatusCode.h"
#include "standin/HostSeam.h"
#include "standin/StatusCode.h"
#include "tests/standin/StandinTest.h"
#include "tests/support/HostTest.h"

namespace {

using NKESTA20::TQSVException;
using NKESTA20::TQSVStatusCode;
using standin::HostCall;
using standin::HostSeam;
using standin::StatusCode;
using usbinfo_test::StatusOf;

class StatusCodeTest : public usbinfo_test::HostTest {};

TEST_F(StatusCodeTest, NamesEveryCodeAsTheStandardDoes) {
  const char* const names[] = {"FAILED",
                               "ACCESS_DENIED",
                               "INVALID_NAMESPACE",
                               "INVALID_PARAMETER",
                               "INVALID_CLASS",
                               "NOT_FOUND",
                               "NOT_SUPPORTED",
                               "CLASS_HAS_CHILDREN",
                               "CLASS_HAS_INSTANCES",
                               "INVALID_SUPERCLASS",
                               "ALREADY_EXISTS",
                               "NO_SUCH_PROPERTY",
                               "TYPE_MISMATCH",
                               "QUERY_LANGUAGE_NOT_SUPPORTED",
                               "INVALID_QUERY",
                               "METHOD_NOT_AVAILABLE",
                               "METHOD_NOT_FOUND"};
  unsigned int code = 1;
  for (const char* name : names) {
    EXPECT_EQ(TQSVStatusCode(code).TranslateStatusCode(), std::string("CIM_ERR_") + name) << code;
    ++code;
  }
}

TEST_F(StatusCodeTest, TakesAnUnknownCodeForFailure) {
  for (const unsigned int code : {0U, 4711U, 4294967295U}) {
    EXPECT_EQ(TQSVStatusCode(code).TranslateStatusCode(), "CIM_ERR_FAILED") << code;
  }
}

TEST_F(StatusCodeTest, KeepsTheCodeInCopies) {
  TQSVStatusCode first(6);
  const TQSVStatusCode copy = first;
  first = TQSVStatusCode(13);
  EXPECT_EQ(copy.TranslateStatusCode(), "CIM_ERR_NOT_FOUND");
  EXPECT_EQ(first.TranslateStatusCode(), "CIM_ERR_TYPE_MISMATCH");
}

TEST_F(StatusCodeTest, ThrowsTheCodeThatIsAskedFor) {
  EXPECT_EQ(StatusOf([] { standin::Throw(StatusCode::kFailed); }), "CIM_ERR_FAILED");
  EXPECT_EQ(StatusOf([] { standin::Throw(StatusCode::kAccessDenied); }), "CIM_ERR_ACCESS_DENIED");
  EXPECT_EQ(StatusOf([] { standin::Throw(StatusCode::kInvalidParameter); }), "CIM_ERR_INVALID_PARAMETER");
  EXPECT_EQ(StatusOf([] { standin::Throw(StatusCode::kInvalidClass); }), "CIM_ERR_INVALID_CLASS");
  EXPECT_EQ(StatusOf([] { standin::Throw(StatusCode::kNotFound); }), "CIM_ERR_NOT_FOUND");
  EXPECT_EQ(StatusOf([] { standin::Throw(StatusCode::kNoSuchProperty); }), "CIM_ERR_NO_SUCH_PROPERTY");
  EXPECT_EQ(StatusOf([] { standin::Throw(StatusCode::kTypeMismatch); }), "CIM_ERR_TYPE_MISMATCH");
}

TEST_F(StatusCodeTest, ExceptionSaysItsTranslatedStatus) {
  const TQSVException error(TQSVStatusCode(5));
  EXPECT_STREQ(error.what(), "CIM_ERR_INVALID_CLASS");
  EXPECT_EQ(error.GetStatusCode().TranslateStatusCode(), "CIM_ERR_INVALID_CLASS");
}

TEST_F(StatusCodeTest, ExceptionIsCaughtAsAStandardOneAndNeverThrowsItself) {
  static_assert(std::is_base_of_v<std::exception, TQSVException>);
  static_assert(std::is_nothrow_destructible_v<TQSVException>);
  static_assert(noexcept(std::declval<const TQSVException&>().what()));
  try {
    standin::Throw(StatusCode::kNotFound);
  } catch (const std::exception& error) {
    EXPECT_STREQ(error.what(), "CIM_ERR_NOT_FOUND");
    return;
  }
  FAIL() << "not a std::exception";
}

TEST_F(StatusCodeTest, ExceptionTextStaysValidWhenAskedForAgain) {
  const TQSVException error(TQSVStatusCode(14));
  const void* const first = error.what();
  EXPECT_EQ(error.what(), first);
}

TEST_F(StatusCodeTest, ExceptionCopiesCarryTheStatus) {
  TQSVException error(TQSVStatusCode(5));
  EXPECT_STREQ(error.what(), "CIM_ERR_INVALID_CLASS");
  const TQSVException copy = error;
  error = TQSVException(TQSVStatusCode(6));
  EXPECT_STREQ(copy.what(), "CIM_ERR_INVALID_CLASS");
  EXPECT_STREQ(error.what(), "CIM_ERR_NOT_FOUND");
}

TEST_F(StatusCodeTest, ExceptionHasNoTextWhenTheTranslationFails) {
  const TQSVException error(TQSVStatusCode(5));
  HostSeam::SetObserver([](const HostCall&) { throw std::bad_alloc(); });
  EXPECT_STREQ(error.what(), "");
}

TEST_F(StatusCodeTest, ExceptionHasNoTextWhateverTheTranslationThrows) {
  const TQSVException error(TQSVStatusCode(5));
  HostSeam::SetObserver([](const HostCall&) { throw 7; });
  EXPECT_STREQ(error.what(), "");
}

}  // namespace
