#include <gtest/gtest.h>

#include "host/kestrel/FrameInterfaces.h"
#include "host/orvcore/Utility.h"

namespace {

using orvcore::utility::QualifiedName;
using orvcore::utility::detail::TypeNameInSignature;

TEST(QualifiedName, IsTheInterfacesOwn) {
  EXPECT_EQ(QualifiedName<KS::IGPUVideoFrame>(), "KS::IGPUVideoFrame");
  EXPECT_EQ(QualifiedName<KS::IVideoFrameMemoryAccess>(), "KS::IVideoFrameMemoryAccess");
  EXPECT_EQ(QualifiedName<KS::IVideoFrame2DPixelMemoryAccess>(),
            "KS::IVideoFrame2DPixelMemoryAccess");
  EXPECT_EQ(QualifiedName<KS::IGPUVideoFrameMemoryAccess>(), "KS::IGPUVideoFrameMemoryAccess");
  EXPECT_EQ(QualifiedName<KS::ICompletionEventVideoFrame>(), "KS::ICompletionEventVideoFrame");
}

TEST(QualifiedName, IsCutFromTheSignatureTextsOfAllCompilers) {
  EXPECT_EQ(TypeNameInSignature(
                "class std::basic_string_view<char,struct std::char_traits<char> > __cdecl "
                "orvcore::utility::detail::FunctionName<struct KS::IGPUVideoFrame>(void)"),
            "KS::IGPUVideoFrame")
      << "MSVC";
  EXPECT_EQ(
      TypeNameInSignature("constexpr std::string_view orvcore::utility::detail::FunctionName() "
                          "[with T = KS::IGPUVideoFrame; std::string_view = "
                          "std::basic_string_view<char>]"),
      "KS::IGPUVideoFrame")
      << "GCC";
  EXPECT_EQ(TypeNameInSignature("std::string_view orvcore::utility::detail::FunctionName() "
                                "[T = KS::IGPUVideoFrame]"),
            "KS::IGPUVideoFrame")
      << "Clang";
}

}  // namespace
