#include "directshow/media_type.h"

#include "directshow/test_filters.h"

namespace tervan::directshow::test {
namespace {

TEST(MediaType, CopiesAreDeepAndHoldTheUnknown) {
  const Object<Inverter> object;
  const MediaType owner = AudioType(44100);
  AM_MEDIA_TYPE source = owner;
  source.pUnk = object.Inner();
  {
    MediaType copy;
    ASSERT_EQ(copy.Assign(source), S_OK);
    EXPECT_TRUE(IsSameMediaType(copy, source));
    EXPECT_NE(copy->pbFormat, source.pbFormat);
    EXPECT_EQ(object.Inner()->AddRef(), 3u);
    object.Inner()->Release();
    ASSERT_EQ(copy.Assign(copy), S_OK);
    EXPECT_EQ(RateOf(copy), 44100u) << "assigning a type to itself keeps it";
  }
  EXPECT_EQ(object.Inner()->AddRef(), 2u);
  object.Inner()->Release();
}

TEST(MediaType, ALengthWithoutAFormatBlockIsNotCopied) {
  AM_MEDIA_TYPE source{};
  source.cbFormat = 18;
  MediaType copy;
  ASSERT_EQ(copy.Assign(source), S_OK);
  EXPECT_EQ(copy->cbFormat, 0u);
  EXPECT_TRUE(IsSameMediaType(source, copy)) << "and is not read when comparing";
}

TEST(MediaType, APartialTypeFitsWhatItNames) {
  const MediaType type = AudioType(44100);
  const MediaType other_rate = AudioType(48000);
  struct Case {
    const char* what;
    GUID major, subtype, format;
    const AM_MEDIA_TYPE* block;
    bool is_partial, fits;
  };
  const Case cases[] = {
      {"nothing", GUID_NULL, GUID_NULL, GUID_NULL, nullptr, true, true},
      {"major", MEDIATYPE_Audio, GUID_NULL, GUID_NULL, nullptr, true, true},
      {"wrong major", MEDIATYPE_Video, GUID_NULL, GUID_NULL, nullptr, true, false},
      {"subtype", MEDIATYPE_Audio, MEDIASUBTYPE_PCM, GUID_NULL, nullptr, true, true},
      {"wrong subtype", MEDIATYPE_Audio, MEDIASUBTYPE_IEEE_FLOAT, GUID_NULL, nullptr, true, false},
      {"format", GUID_NULL, GUID_NULL, FORMAT_WaveFormatEx, &type.Get(), true, true},
      {"wrong format", MEDIATYPE_Audio, MEDIASUBTYPE_PCM, FORMAT_WaveFormatEx, &other_rate.Get(), false, false},
      {"all", MEDIATYPE_Audio, MEDIASUBTYPE_PCM, FORMAT_WaveFormatEx, &type.Get(), false, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    AM_MEDIA_TYPE partial{};
    partial.majortype = c.major;
    partial.subtype = c.subtype;
    partial.formattype = c.format;
    if (c.block) partial.cbFormat = c.block->cbFormat, partial.pbFormat = c.block->pbFormat;
    EXPECT_EQ(IsPartialMediaType(partial), c.is_partial);
    EXPECT_EQ(MatchesPartialMediaType(type, partial), c.fits);
  }
}

}  // namespace
}  // namespace tervan::directshow::test
