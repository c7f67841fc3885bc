// Which wave formats the pins take, and what becomes of them.
#include "module/graph_fakes.h"

namespace tervan::test {
namespace {

constexpr WORD kPcm = WAVE_FORMAT_PCM, kFloat = WAVE_FORMAT_IEEE_FLOAT, kExtensible = 0xFFFE;

using FormatTest = ModuleTest;

struct Offer {
  const char* what;
  Format format;
  bool accepted;
};

const Offer kOffers[] = {
    {"8 bits", {kPcm, 1, 8000, 8}, true},
    {"16 bits", {kPcm, 2, 44100, 16}, true},
    {"32 bits", {kPcm, 2, 48000, 32}, true},
    {"float", {kFloat, 1, 96000, 32}, true},
    {"double", {kFloat, 2, 192000, 64}, true},
    {"rate 0", {kPcm, 2, 0, 16}, true},
    {"24 bits", {kPcm, 2, 44100, 24}, false},
    {"64 bits PCM", {kPcm, 2, 44100, 64}, false},
    {"0 bits", {kPcm, 2, 44100, 0}, false},
    {"float of 16 bits", {kFloat, 2, 44100, 16}, false},
    {"no channels", {kPcm, 0, 44100, 16}, false},
    {"3 channels", {kPcm, 3, 44100, 16}, false},
    {"extensible", {kExtensible, 2, 44100, 16}, false},
    {"another tag", {2, 2, 44100, 16}, false},
};

TEST_F(FormatTest, AreTakenByTagChannelsAndBits) {
  for (const Offer& offer : kOffers) {
    SCOPED_TRACE(offer.what);
    CompressorGraph graph(offer.format);
    const MediaType type = AudioType(offer.format);
    EXPECT_EQ(graph.input->QueryAccept(&type.Get()), offer.accepted ? S_OK : S_FALSE);
    EXPECT_EQ(graph.input->ReceiveConnection(&graph.source->pin, &type.Get()),
              offer.accepted ? S_OK : VFW_E_TYPE_NOT_ACCEPTED);
    WAVEFORMATEX stored{};
    EXPECT_EQ(graph.control->GetFormat(&stored), offer.accepted ? S_OK : VFW_E_NOT_CONNECTED);
    if (!offer.accepted) continue;
    const WAVEFORMATEX expected = WaveFormat(offer.format);
    EXPECT_EQ(std::memcmp(&stored, &expected, sizeof stored), 0);
    EXPECT_EQ(graph.input->Disconnect(), S_OK);
  }
}

// Only the major type, the compression flag and the block decide; sizes in the block are computed anew.
TEST_F(FormatTest, AreReadFromTheBlock) {
  const Format format{kPcm, 2, 44100, 16};
  WAVEFORMATEX wave = WaveFormat(format);
  wave.nBlockAlign = 0;
  wave.nAvgBytesPerSec = 7;
  wave.cbSize = 0x5A5A;
  MediaType owner = AudioType(format);
  const AM_MEDIA_TYPE good = owner.Get();
  struct Row {
    const char* what;
    std::function<void(AM_MEDIA_TYPE&)> change;
    bool accepted;
  };
  const Row rows[] = {
      {"as it is", [](AM_MEDIA_TYPE&) {}, true},
      {"16 bytes", [](AM_MEDIA_TYPE& type) { type.cbFormat = 16; }, true},
      {"14 bytes", [](AM_MEDIA_TYPE& type) { type.cbFormat = 14; }, false},
      {"no block", [](AM_MEDIA_TYPE& type) { type.cbFormat = 0, type.pbFormat = nullptr; }, false},
      {"a null block with a length", [](AM_MEDIA_TYPE& type) { type.pbFormat = nullptr; }, false},
      {"video", [](AM_MEDIA_TYPE& type) { type.majortype = MEDIATYPE_Video; }, false},
      {"another subtype", [](AM_MEDIA_TYPE& type) { type.subtype = MEDIASUBTYPE_RGB24; }, true},
      {"another format type", [](AM_MEDIA_TYPE& type) { type.formattype = FORMAT_VideoInfo; }, true},
      {"temporally compressed", [](AM_MEDIA_TYPE& type) { type.bTemporalCompression = TRUE; }, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    CompressorGraph graph(format);
    AM_MEDIA_TYPE type = good;
    type.pbFormat = reinterpret_cast<BYTE*>(&wave);
    row.change(type);
    EXPECT_EQ(graph.input->QueryAccept(&type), row.accepted ? S_OK : S_FALSE);
    if (row.what == std::string("a null block with a length")) continue;  // no one could copy it for a connection
    EXPECT_EQ(SUCCEEDED(graph.input->ReceiveConnection(&graph.source->pin, &type)), row.accepted);
    if (!row.accepted) continue;
    WAVEFORMATEX stored{};
    ASSERT_EQ(graph.control->GetFormat(&stored), S_OK);
    EXPECT_EQ(stored.nBlockAlign, 4);
    EXPECT_EQ(stored.nAvgBytesPerSec, 176400u);
    EXPECT_EQ(stored.cbSize, 0);
    graph.input->Disconnect();
  }
  CompressorGraph graph(format);
  EXPECT_EQ(graph.input->QueryAccept(nullptr), E_POINTER);
}

TEST_F(FormatTest, TheOutputHasTheInputsType) {
  CompressorGraph graph({kPcm, 2, 44100, 16});
  graph.Connect();
  const MediaType same = AudioType({kPcm, 2, 44100, 16});
  AM_MEDIA_TYPE type{};
  ASSERT_EQ(graph.output->ConnectionMediaType(&type), S_OK);
  EXPECT_TRUE(directshow::IsSameMediaType(type, same));
  directshow::FreeMediaType(type);
  PIN_DIRECTION direction;
  EXPECT_EQ(graph.input->QueryDirection(&direction), S_OK);
  EXPECT_EQ(direction, PINDIR_INPUT);
  EXPECT_EQ(graph.output->QueryDirection(&direction), S_OK);
  EXPECT_EQ(direction, PINDIR_OUTPUT);
}

TEST_F(FormatTest, SettingOneTellsTheWindowsWhichPinItWas) {
  const HWND window = CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  {
    CompressorGraph graph({kPcm, 2, 44100, 16});
    ASSERT_EQ(graph.control->SetNotifyWindow(window, 5), S_OK);
    graph.Connect();
    std::vector<int> codes;
    MSG message;
    while (PeekMessageW(&message, window, WM_COMMAND, WM_COMMAND, PM_REMOVE)) codes.push_back(HIWORD(message.wParam));
    EXPECT_THAT(codes, testing::ElementsAre(0, 1));
  }
  DestroyWindow(window);
}

}  // namespace
}  // namespace tervan::test
