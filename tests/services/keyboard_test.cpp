#include <orv/services/keyboard.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "services/key_rows.h"
#include "services/key_source.h"
#include "services/key_symbols.h"
#include "services/keyboard_data.h"
#include "support/log_capture.h"

namespace orv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

static_assert(!std::is_polymorphic_v<Keyboard>);

constexpr KeyCode UNKNOWN = static_cast<KeyCode>(59);  // F1 has no entry

std::vector<unsigned int> keys_down(const Keyboard& keyboard) {
  std::vector<unsigned int> down;
  for (unsigned int vk = 0; vk < 256; ++vk) {
    if (keyboard.is_key_down_raw(vk)) down.push_back(vk);
  }
  return down;
}

// A keyboard in memory, whose keys carry symbols of the test's choice.
struct Desk {
  detail::KeyReading state;
  bool there = true;
  int reads = 0;

  void carry(int key, std::uint32_t symbol) {
    state.symbols[key] = symbol;
    state.remapped = true;
  }
  void press(int key) { state.down[key / 8] |= static_cast<std::uint8_t>(1 << key % 8); }
  void release(int key) { state.down[key / 8] &= static_cast<std::uint8_t>(~(1 << key % 8)); }
};

class DeskSource : public detail::KeySource {
 public:
  explicit DeskSource(Desk& desk) : desk_(desk) {}
  bool read(detail::KeyReading* reading) override {
    ++desk_.reads;
    if (!desk_.there) return false;
    *reading = desk_.state;
    desk_.state.remapped = false;
    return true;
  }

 private:
  Desk& desk_;
};

class KeyboardOnDesk : public testing::Test {
 protected:
  KeyboardOnDesk() {
    keyboard.init();
    KeyboardData::of(keyboard).set_source(std::make_unique<DeskSource>(desk));
  }
  int byte(int vk) { return KeyboardData::of(keyboard).key_buffer[vk]; }

  Desk desk;
  Keyboard keyboard;
};

// ---- the buffer ------------------------------------------------------------------------------

TEST(Keyboard, StartsWithAllKeysUp) {
  Keyboard keyboard;
  EXPECT_TRUE(keyboard.init());
  EXPECT_THAT(keys_down(keyboard), IsEmpty());
}

TEST(Keyboard, CodesHaveTheirVirtualKeys) {
  for (const KeyRow& row : key_rows) {
    Keyboard keyboard;
    keyboard.init();
    EXPECT_EQ(row.key, row.code) << row.name;
    EXPECT_TRUE(keyboard.set_key_state(row.key, 1));
    EXPECT_THAT(keys_down(keyboard), ElementsAre(row.vk)) << row.name;
    for (const KeyRow& other : key_rows) {
      EXPECT_EQ(keyboard.is_key_down(other.key), other.code == row.code) << other.name;
    }
  }
}

TEST(Keyboard, ClearMarksEveryKeyAsUp) {
  Keyboard keyboard;
  keyboard.init();
  for (const KeyRow& row : key_rows) keyboard.set_key_state(row.key, 1);
  EXPECT_EQ(keys_down(keyboard).size(), 80u);
  EXPECT_TRUE(keyboard.clear_key_buffer());
  for (const KeyRow& row : key_rows) EXPECT_FALSE(keyboard.is_key_down(row.key)) << row.name;
  EXPECT_THAT(keys_down(keyboard), IsEmpty());
}

TEST(Keyboard, SetKeyStateIsSeenByBothQuestions) {
  Keyboard keyboard;
  keyboard.init();
  keyboard.set_key_state(KEY_A, 1);
  EXPECT_TRUE(keyboard.is_key_down(KEY_A));
  EXPECT_TRUE(keyboard.is_key_down_raw(65));
  keyboard.set_key_state(KEY_A, 0);
  EXPECT_FALSE(keyboard.is_key_down(KEY_A));
}

TEST(Keyboard, NegativeStatesClear) {
  Keyboard keyboard;
  keyboard.init();
  keyboard.set_key_state(KEY_A, 127);
  EXPECT_TRUE(keyboard.is_key_down(KEY_A));
  EXPECT_TRUE(keyboard.set_key_state(KEY_A, -1));
  EXPECT_FALSE(keyboard.is_key_down(KEY_A));
}

TEST(Keyboard, RawQuestionsEndAt256) {
  Keyboard keyboard;
  keyboard.init();
  KeyboardData& data = KeyboardData::of(keyboard);
  std::fill(std::begin(data.key_buffer), std::end(data.key_buffer), std::uint8_t{0xff});
  std::fill(std::begin(data.vk_of_code), std::end(data.vk_of_code), std::uint8_t{0xff});
  EXPECT_TRUE(keyboard.is_key_down_raw(0));
  EXPECT_TRUE(keyboard.is_key_down_raw(255));
  for (const unsigned int vk : {256u, 257u, 512u, 0x80000000u, 0xffffffffu}) {
    EXPECT_FALSE(keyboard.is_key_down_raw(vk)) << vk;
  }
}

TEST(Keyboard, VirtualKeyQuestionIsAlwaysFalse) {
  Keyboard keyboard;
  keyboard.init();
  EXPECT_FALSE(keyboard.is_virtual_key_down(65));
  keyboard.set_key_state(KEY_A, 1);
  for (const int vk : {65, 0, 255, 256, -1}) EXPECT_FALSE(keyboard.is_virtual_key_down(vk));
}

TEST_F(KeyboardOnDesk, VirtualKeyQuestionIsFalseAfterAnyCall) {
  desk.carry(38, 'a');
  desk.press(38);
  keyboard.update_key_buffer();
  EXPECT_TRUE(keyboard.is_key_down_raw(65));
  EXPECT_FALSE(keyboard.is_virtual_key_down(65));
  keyboard.set_virtual_key_state(65, 1);
  EXPECT_FALSE(keyboard.is_virtual_key_down(65));
  keyboard.clear_key_buffer();
  EXPECT_FALSE(keyboard.is_virtual_key_down(65));
}

// ---- codes without a virtual key -------------------------------------------------------------

TEST(Keyboard, UnknownCodesShareVirtualKeyZero) {
  Keyboard keyboard;
  keyboard.init();
  EXPECT_FALSE(keyboard.is_key_down(UNKNOWN));
  EXPECT_TRUE(keyboard.set_key_state(UNKNOWN, 1));
  EXPECT_THAT(keys_down(keyboard), ElementsAre(0));
  for (const int code : {59, 0, 68, 224, 255, 256, -1, 1 << 30}) {
    EXPECT_TRUE(keyboard.is_key_down(static_cast<KeyCode>(code))) << code;
  }
  EXPECT_FALSE(keyboard.is_key_down(KEY_A));
  keyboard.set_key_state(static_cast<KeyCode>(-7), 0);
  EXPECT_FALSE(keyboard.is_key_down(UNKNOWN));
}

TEST(Keyboard, CodesBesideTheEightyAreUnknown) {
  Keyboard keyboard;
  keyboard.init();
  keyboard.set_key_state(UNKNOWN, 1);
  int unknown = 0;
  for (int code = 0; code < 256; ++code) {
    const bool listed = std::any_of(std::begin(key_rows), std::end(key_rows),
                                    [&](const KeyRow& row) { return row.code == code; });
    EXPECT_EQ(keyboard.is_key_down(static_cast<KeyCode>(code)), !listed) << code;
    unknown += !listed;
  }
  EXPECT_EQ(unknown, 256 - 80);
}

TEST(Keyboard, BeforeInitNoCodeIsKnown) {
  Keyboard keyboard;
  keyboard.set_key_state(KEY_A, 1);
  EXPECT_THAT(keys_down(keyboard), ElementsAre(0));
  EXPECT_TRUE(keyboard.is_key_down(KEY_B));
  keyboard.init();
  EXPECT_FALSE(keyboard.is_key_down(KEY_A));
}

TEST(Keyboard, InitKeepsTheBuffer) {
  Keyboard keyboard;
  keyboard.init();
  keyboard.set_key_state(KEY_A, 1);
  EXPECT_TRUE(keyboard.init());
  EXPECT_TRUE(keyboard.is_key_down(KEY_A));
}

// ---- reading the keyboard --------------------------------------------------------------------

TEST_F(KeyboardOnDesk, UpdateReadsEveryKeyAnew) {
  desk.carry(38, 'a');
  desk.carry(39, 's');
  desk.press(38);
  keyboard.set_key_state(KEY_Z, 1);
  EXPECT_TRUE(keyboard.update_key_buffer());
  EXPECT_THAT(keys_down(keyboard), ElementsAre(65));
  EXPECT_TRUE(keyboard.is_key_down(KEY_A));
  desk.press(39);
  desk.release(38);
  keyboard.update_key_buffer();
  EXPECT_THAT(keys_down(keyboard), ElementsAre(83));
}

TEST_F(KeyboardOnDesk, KeysWithoutAVirtualKeyAreNotSeen) {
  desk.carry(255, 0x1008ff81);
  desk.press(255);
  desk.press(0);
  desk.press(12);
  keyboard.update_key_buffer();
  EXPECT_THAT(keys_down(keyboard), IsEmpty());
}

TEST_F(KeyboardOnDesk, OneOfTwoKeysWithTheSameSymbolIsEnough) {
  desk.carry(40, 'x');
  desk.carry(200, 'x');
  for (const int key : {40, 200}) {
    desk.press(key);
    keyboard.update_key_buffer();
    EXPECT_THAT(keys_down(keyboard), ElementsAre(88));
    desk.release(key);
  }
}

struct SideRow {
  std::uint32_t left, right;
  int vk_left, vk_right, vk;
};

TEST_F(KeyboardOnDesk, EitherSideSetsTheKeyOfBoth) {
  for (const SideRow& row :
       {SideRow{0xffe1, 0xffe2, 160, 161, 16}, SideRow{0xffe3, 0xffe4, 162, 163, 17},
        SideRow{0xffe9, 0xffea, 164, 165, 18}}) {
    desk.carry(50, row.left);
    desk.carry(62, row.right);
    desk.press(50);
    keyboard.update_key_buffer();
    EXPECT_THAT(keys_down(keyboard), ElementsAre(row.vk, row.vk_left));
    desk.press(62);
    keyboard.update_key_buffer();
    EXPECT_THAT(keys_down(keyboard), ElementsAre(row.vk, row.vk_left, row.vk_right));
    desk.release(50);
    keyboard.update_key_buffer();
    EXPECT_THAT(keys_down(keyboard), ElementsAre(row.vk, row.vk_right));
    desk.release(62);
  }
}

TEST_F(KeyboardOnDesk, EnterOfThePadIsReturnToo) {
  desk.carry(104, 0xff8d);
  desk.carry(36, 0xff0d);
  desk.press(104);
  keyboard.update_key_buffer();
  EXPECT_THAT(keys_down(keyboard), ElementsAre(13, 156));
  EXPECT_TRUE(keyboard.is_key_down(KEY_NUMPAD_ENTER));
  EXPECT_TRUE(keyboard.is_key_down(KEY_RETURN));
  desk.release(104);
  desk.press(36);
  keyboard.update_key_buffer();
  EXPECT_THAT(keys_down(keyboard), ElementsAre(13));
}

TEST_F(KeyboardOnDesk, LocksThatAreOnSetTheLowBit) {
  desk.carry(66, 0xffe5);
  for (std::uint32_t locks = 0; locks < 16; ++locks) {
    desk.state.locks = locks;
    keyboard.update_key_buffer();
    EXPECT_EQ(byte(20), static_cast<int>(locks & 1));
    EXPECT_EQ(byte(144), static_cast<int>(locks >> 1 & 1));
    EXPECT_EQ(byte(145), static_cast<int>(locks >> 2 & 1));
    EXPECT_THAT(keys_down(keyboard), IsEmpty());
  }
  desk.press(66);
  keyboard.update_key_buffer();
  EXPECT_EQ(byte(20), 0x81);
}

TEST_F(KeyboardOnDesk, NewSymbolsTakeTheirPlace) {
  desk.carry(38, 'a');
  desk.press(38);
  keyboard.update_key_buffer();
  EXPECT_THAT(keys_down(keyboard), ElementsAre(65));
  desk.carry(38, 'q');
  keyboard.update_key_buffer();
  EXPECT_THAT(keys_down(keyboard), ElementsAre(81));
}

TEST_F(KeyboardOnDesk, WithoutAKeyboardTheBufferStays) {
  desk.carry(38, 'a');
  desk.press(38);
  keyboard.update_key_buffer();
  desk.release(38);
  desk.there = false;
  keyboard.set_key_state(KEY_Z, 1);
  EXPECT_TRUE(keyboard.update_key_buffer());
  EXPECT_THAT(keys_down(keyboard), ElementsAre(65, 90));
}

// ---- presses since last asked ----------------------------------------------------------------

TEST_F(KeyboardOnDesk, VirtualKeyStateTellsOfAPressOnce) {
  desk.carry(38, 'a');
  EXPECT_TRUE(keyboard.set_virtual_key_state(65, 1));
  EXPECT_EQ(byte(65), 0);
  desk.press(38);
  EXPECT_TRUE(keyboard.set_virtual_key_state(65, 0));
  EXPECT_EQ(byte(65), 1);
  EXPECT_FALSE(keyboard.is_key_down(KEY_A));
  EXPECT_TRUE(keyboard.set_virtual_key_state(65, 1));
  EXPECT_EQ(byte(65), 0);
  desk.release(38);
  keyboard.set_virtual_key_state(65, 1);
  EXPECT_EQ(byte(65), 0);
}

TEST_F(KeyboardOnDesk, VirtualKeyStateClearsADownKey) {
  keyboard.set_key_state(KEY_A, 1);
  EXPECT_TRUE(keyboard.set_virtual_key_state(65, 1));
  EXPECT_FALSE(keyboard.is_key_down(KEY_A));
}

TEST_F(KeyboardOnDesk, PressesSeenByUpdatesAreKept) {
  desk.carry(38, 'a');
  desk.carry(39, 's');
  desk.press(38);
  desk.press(39);
  keyboard.update_key_buffer();
  desk.release(38);
  desk.release(39);
  keyboard.update_key_buffer();
  keyboard.set_virtual_key_state(65, 0);
  EXPECT_EQ(byte(65), 1);
  EXPECT_EQ(byte(83), 0);
  keyboard.set_virtual_key_state(83, 0);
  EXPECT_EQ(byte(83), 1);
}

TEST_F(KeyboardOnDesk, VirtualKeyStateRefusesOtherNumbers) {
  for (const int vk : {-1, 256, 1 << 30, -(1 << 30)}) {
    EXPECT_FALSE(keyboard.set_virtual_key_state(vk, 1)) << vk;
  }
  EXPECT_EQ(desk.reads, 0);
  EXPECT_TRUE(keyboard.set_virtual_key_state(0, 1));
  EXPECT_TRUE(keyboard.set_virtual_key_state(255, 1));
}

// ---- without a display -----------------------------------------------------------------------

// Points DISPLAY elsewhere, null for nowhere.
class OtherDisplay {
 public:
  explicit OtherDisplay(const char* name) {
    if (const char* old = std::getenv("DISPLAY")) old_ = std::make_unique<std::string>(old);
    set(name);
  }
  ~OtherDisplay() { set(old_ ? old_->c_str() : nullptr); }

 private:
  static void set(const char* name) {
    if (name) {
      setenv("DISPLAY", name, 1);
    } else {
      unsetenv("DISPLAY");
    }
  }
  std::unique_ptr<std::string> old_;
};

TEST(Keyboard, WithoutADisplayTheBufferStaysAsItWas) {
  for (const char* name : {static_cast<const char*>(nullptr), "", ":64999", "no such display"}) {
    const OtherDisplay display(name);
    LogCapture log;
    Keyboard keyboard;
    keyboard.init();
    keyboard.set_key_state(KEY_A, 1);
    EXPECT_TRUE(keyboard.update_key_buffer());
    EXPECT_TRUE(keyboard.update_key_buffer());
    EXPECT_THAT(keys_down(keyboard), ElementsAre(65));
    EXPECT_TRUE(keyboard.set_virtual_key_state(65, 1));
    EXPECT_THAT(keys_down(keyboard), IsEmpty());
    EXPECT_EQ(log.count("Keyboard - "), 1) << log.text();
  }
}

// ---- symbols ---------------------------------------------------------------------------------

struct SymbolRow {
  const char* name;
  std::uint32_t symbol;
  int vk;
};

constexpr SymbolRow symbol_rows[] = {
    {"nothing", 0, 0},
    {"exclam", '!', 0},
    {"ccedilla", 0xe7, 0},
    {"0", '0', 48},
    {"9", '9', 57},
    {"a", 'a', 65},
    {"z", 'z', 90},
    {"A", 'A', 65},
    {"Z", 'Z', 90},
    {"KP_0", 0xffb0, 96},
    {"KP_9", 0xffb9, 105},
    {"KP_Insert", 0xff9e, 96},
    {"KP_End", 0xff9c, 97},
    {"KP_Down", 0xff99, 98},
    {"KP_Next", 0xff9b, 99},
    {"KP_Left", 0xff96, 100},
    {"KP_Begin", 0xff9d, 101},
    {"KP_Right", 0xff98, 102},
    {"KP_Home", 0xff95, 103},
    {"KP_Up", 0xff97, 104},
    {"KP_Prior", 0xff9a, 105},
    {"KP_Multiply", 0xffaa, 106},
    {"KP_Add", 0xffab, 107},
    {"KP_Separator", 0xffac, 110},
    {"KP_Subtract", 0xffad, 109},
    {"KP_Decimal", 0xffae, 110},
    {"KP_Delete", 0xff9f, 110},
    {"KP_Divide", 0xffaf, 111},
    {"KP_Enter", 0xff8d, 156},
    {"Home", 0xff50, 36},
    {"Left", 0xff51, 37},
    {"Up", 0xff52, 38},
    {"Right", 0xff53, 39},
    {"Down", 0xff54, 40},
    {"Prior", 0xff55, 33},
    {"Next", 0xff56, 34},
    {"End", 0xff57, 35},
    {"Insert", 0xff63, 45},
    {"Delete", 0xffff, 46},
    {"Meta_L", 0xffe7, 164},
    {"Meta_R", 0xffe8, 165},
    {"ISO_Level3_Shift", 0xfe03, 165},
    {"Super_L", 0xffeb, 91},
    {"Super_R", 0xffec, 92},
    {"F1", 0xffbe, 112},
    {"F24", 0xffd5, 135},
    {"Pause", 0xff13, 19},
    {"Print", 0xff61, 44},
    {"semicolon", ';', 186},
    {"equal", '=', 187},
    {"comma", ',', 188},
    {"minus", '-', 189},
    {"period", '.', 190},
    {"slash", '/', 191},
    {"grave", '`', 192},
    {"bracketleft", '[', 219},
    {"backslash", '\\', 220},
    {"bracketright", ']', 221},
    {"apostrophe", '\'', 222},
    {"less", '<', 226},
    {"XF86Sleep", 0x1008ff2f, 95},
    {"the greatest", 0xffffffff, 0},
};

TEST(KeySymbols, HaveTheirVirtualKeys) {
  for (const SymbolRow& row : symbol_rows) {
    EXPECT_EQ(detail::vk_of_symbol(row.symbol), row.vk) << row.name;
  }
}

int count_mapped(const std::uint8_t (&vk_of_key)[detail::NUM_KEYS]) {
  int count = 0;
  for (const std::uint8_t vk : vk_of_key) count += vk != 0;
  return count;
}

TEST(KeySymbols, OtherScriptsCountByPlace) {
  std::uint32_t symbols[detail::NUM_KEYS] = {};
  std::uint8_t vk_of_key[detail::NUM_KEYS];
  int letters = 0;
  for (const KeyRow& row : key_rows) {
    if (row.vk < 65 || row.vk > 90) continue;
    symbols[row.x11] = static_cast<std::uint32_t>(0x6c0 + ++letters);  // Cyrillic
  }
  detail::map_keys(symbols, vk_of_key);
  EXPECT_EQ(count_mapped(vk_of_key), 26);
  for (const KeyRow& row : key_rows) {
    if (!symbols[row.x11]) continue;
    EXPECT_EQ(vk_of_key[row.x11], row.vk) << row.name;
  }
}

TEST(KeySymbols, DigitsOfAFrenchKeyboardCountByPlaceAndLettersBySymbol) {
  std::uint32_t symbols[detail::NUM_KEYS] = {};
  std::uint8_t vk_of_key[detail::NUM_KEYS];
  symbols[10] = '&';  // the key of 1
  symbols[24] = 'a';  // where Q is elsewhere
  symbols[38] = 'q';  // where A is elsewhere
  symbols[47] = 'm';  // right of L
  symbols[58] = ',';  // where M is elsewhere
  symbols[61] = '!';  // right of the colon
  detail::map_keys(symbols, vk_of_key);
  EXPECT_EQ(vk_of_key[10], '1');
  EXPECT_EQ(vk_of_key[24], 'A');
  EXPECT_EQ(vk_of_key[38], 'Q');
  EXPECT_EQ(vk_of_key[47], 'M');
  EXPECT_EQ(vk_of_key[58], 188);
  EXPECT_EQ(vk_of_key[61], 0);
  EXPECT_EQ(count_mapped(vk_of_key), 5);
}

TEST(KeySymbols, PlaceCountsNotForLettersThatStandElsewhere) {
  std::uint32_t symbols[detail::NUM_KEYS] = {};
  std::uint8_t vk_of_key[detail::NUM_KEYS];
  symbols[38] = 0x6c1;  // the place of A
  symbols[60] = 'a';
  detail::map_keys(symbols, vk_of_key);
  EXPECT_EQ(vk_of_key[38], 0);
  EXPECT_EQ(vk_of_key[60], 'A');
}

TEST(KeySymbols, KeysThatCarryNothingStayWithout) {
  const std::uint32_t symbols[detail::NUM_KEYS] = {};
  std::uint8_t vk_of_key[detail::NUM_KEYS];
  detail::map_keys(symbols, vk_of_key);
  EXPECT_EQ(count_mapped(vk_of_key), 0);
}

}  // namespace
}  // namespace orv::test
