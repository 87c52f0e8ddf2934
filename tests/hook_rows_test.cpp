// Rows of the hook tables: what does not fit does not compile.
#include <gtest/gtest.h>

#include "platform/added_method.hpp"
#include "platform/hook.hpp"

namespace platform {
namespace row_cases {

struct Fitting {
  static inline constinit Previous<BOOL(id, SEL, id, BOOL)> previous{};
  static BOOL replacement(id, SEL, id, BOOL suspended) { return suspended; }
};
struct OtherResult {
  static inline constinit Previous<void(id, SEL, id, BOOL)> previous{};
  static BOOL replacement(id, SEL, id, BOOL suspended) { return suspended; }
};
struct OtherArgument {
  static inline constinit Previous<BOOL(id, SEL, id, int)> previous{};
  static BOOL replacement(id, SEL, id, BOOL suspended) { return suspended; }
};
struct WithoutSelector {
  static inline constinit Previous<void(id)> previous{};
  static void replacement(id) {}
};

template <class Hook, Literal Name>
concept CanBeARow = requires {
  method<Hook, Name>();
};

static_assert(CanBeARow<Fitting, "launch:suspended:">);
static_assert(!CanBeARow<Fitting, "launch:">, "too few colons");
static_assert(!CanBeARow<Fitting, "launch:suspended:now:">, "too many colons");
static_assert(!CanBeARow<OtherResult, "launch:suspended:">, "slot and replacement disagree");
static_assert(!CanBeARow<OtherArgument, "launch:suspended:">, "slot and replacement disagree");
static_assert(!CanBeARow<WithoutSelector, "launch">, "no method implementation");

inline void takesBlock(id, SEL, BlockPointer, NSInteger) {}
template <auto* Function, Literal Name>
concept CanBeAdded = requires {
  addedMethod<Function, Name>();
};
static_assert(CanBeAdded<&takesBlock, "doIt:times:">);
static_assert(!CanBeAdded<&takesBlock, "doIt:">);

TEST(Encodings, FollowTheFunctionTypes) {
  EXPECT_STREQ((kEncoding<void(id, SEL, BlockPointer, NSInteger)>), "v@:@?q");
  EXPECT_STREQ((kEncoding<BOOL(id, SEL, id)>), "B@:@");
  EXPECT_STREQ((kEncoding<id(id, SEL, double, BlockPointer, BOOL)>), "@@:d@?B");
}

TEST(HookRows, SlotsAreEmptyUntilTheyAreFilled) { EXPECT_EQ(Fitting::previous.stored, nullptr); }

}  // namespace row_cases
}  // namespace platform
