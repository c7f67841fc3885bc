#include "ui/controls/meter_label_format.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace tervan::ui {
namespace {

constexpr char16_t kMark = u'$';
constexpr int kMaxWidth = 16;
constexpr int kMaxPrecision = 9;
constexpr double kMaxValue = 1e9;  // no decibel is larger, and every fixed text of it fits its buffer

struct NumberField {
  bool left = false;
  bool plus = false;
  bool blank = false;
  bool zeros = false;
  int width = 0;
  std::optional<int> precision;
  char16_t kind = 0;
  std::size_t length = 0;  // in the format
};

// One number's description, behind its mark.
class FieldReader {
 public:
  explicit FieldReader(std::u16string_view text) : text_(text) {}

  std::optional<NumberField> Read() {
    NumberField field;
    while (TakeFlag(field)) {
    }
    field.width = TakeDigits(kMaxWidth);
    if (Take(u'.')) field.precision = TakeDigits(kMaxPrecision);
    if (next_ == text_.size() || std::u16string_view(u"fegdi").find(text_[next_]) == std::u16string_view::npos) {
      return std::nullopt;
    }
    field.kind = text_[next_++];
    field.length = next_;
    return field;
  }

 private:
  bool Take(char16_t wanted) {
    if (next_ == text_.size() || text_[next_] != wanted) return false;
    ++next_;
    return true;
  }

  bool TakeFlag(NumberField& field) {
    if (Take(u'-')) return field.left = true;
    if (Take(u'+')) return field.plus = true;
    if (Take(u' ')) return field.blank = true;
    if (Take(u'0')) return field.zeros = true;
    return Take(u'#');
  }

  int TakeDigits(int largest) {
    int number = 0;
    for (; next_ < text_.size() && text_[next_] >= u'0' && text_[next_] <= u'9'; ++next_) {
      number = std::min(number * 10 + (text_[next_] - u'0'), largest);
    }
    return number;
  }

  std::u16string_view text_;
  std::size_t next_ = 0;
};

// The digits of a number >= 0.
std::u16string Digits(const NumberField& field, double magnitude, std::u16string_view decimal_sign) {
  const bool is_integer = field.kind == u'd' || field.kind == u'i';
  const std::chars_format form = field.kind == u'e'   ? std::chars_format::scientific
                                 : field.kind == u'g' ? std::chars_format::general
                                                      : std::chars_format::fixed;
  char text[32];
  const std::to_chars_result end =
      std::to_chars(std::begin(text), std::end(text), magnitude, form, is_integer ? 0 : field.precision.value_or(6));
  std::u16string digits;
  for (const char* c = text; c != end.ptr; ++c) {
    if (*c == '.') {
      digits += decimal_sign;
    } else {
      digits += static_cast<char16_t>(*c);
    }
  }
  return digits;
}

std::u16string NumberText(const NumberField& field, double value, std::u16string_view decimal_sign) {
  const double magnitude = std::min(std::fabs(value), kMaxValue);
  const std::u16string digits = Digits(field, magnitude, decimal_sign);
  // What is printed as zero has no minus sign.
  const bool is_negative = value < 0.0 && digits.find_first_of(u"123456789") != std::u16string::npos;
  const std::u16string sign = is_negative ? u"-" : field.plus ? u"+" : field.blank ? u" " : u"";
  const std::size_t length = sign.size() + digits.size();
  const auto width = static_cast<std::size_t>(field.width);
  const std::u16string padding(width > length ? width - length : 0, field.zeros && !field.left ? u'0' : u' ');
  if (field.left) return sign + digits + padding;
  return field.zeros ? sign + padding + digits : padding + sign + digits;
}

}  // namespace

std::u16string FormatLabel(std::u16string_view format, double value, std::u16string_view decimal_sign) {
  std::u16string label;
  bool has_number = false;
  for (std::size_t i = 0; i < format.size(); ++i) {
    const std::u16string_view rest = format.substr(i + 1);
    if (format[i] != kMark) {
      label += format[i];
    } else if (rest.starts_with(kMark)) {
      label += kMark;
      ++i;
    } else if (const std::optional<NumberField> field = FieldReader(rest).Read(); field && !has_number) {
      label += NumberText(*field, value, decimal_sign);
      has_number = true;
      i += field->length;
    } else {
      label += kMark;
    }
  }
  return label;
}

}  // namespace tervan::ui
