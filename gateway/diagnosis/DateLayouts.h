#pragma once

#include <array>
#include <string_view>

namespace kzm::ModbusGateway {

// A layout of dates in fields, a letter per byte as on the wire: Y y year (two bytes; one, since 2000), n year since
// 1900, M month, d day, h hour, m minute, s second, W weekday, T t milliseconds (two bytes), U u milliseconds of the
// minute, 0 zero, x any, 2 seconds since 2000 (four bytes).
struct DateLayout {
    std::string_view type;  // as profiles name it, or will
    std::string_view bytes;
    bool isBcd = false;  // two decimal digits per byte
};

// clang-format off
inline constexpr std::array DATE_LAYOUTS{
    DateLayout{"datetime-fields-ymdhms",   "Yy0M0d0h0m0s"},
    DateLayout{"datetime-fields-ymdhms",   "0y0M0d0h0m0s"},
    DateLayout{"datetime-fields-smhdmy",   "0s0m0h0d0MYy"},
    DateLayout{"datetime-fields-smhdmy",   "0s0m0h0d0M0y"},
    DateLayout{"datetime-fields-dmyhms",   "0d0MYy0h0m0s"},
    DateLayout{"datetime-fields-dmyhms",   "0d0M0y0h0m0s"},
    DateLayout{"datetime-fields-mdyhms",   "0M0dYy0h0m0s"},
    DateLayout{"datetime-fields-mdyhms",   "0M0d0y0h0m0s"},
    DateLayout{"datetime-fields-hmsdmy",   "0h0m0s0d0MYy"},
    DateLayout{"datetime-fields-hmsdmy",   "0h0m0s0d0M0y"},
    DateLayout{"datetime-fields-hmsymd",   "0h0m0sYy0M0d"},
    DateLayout{"datetime-fields-hmsymd",   "0h0m0s0y0M0d"},
    DateLayout{"datetime-fields-ymdwhms",  "Yy0M0d0W0h0m0s"},
    DateLayout{"datetime-fields-ymdwhms",  "0y0M0d0W0h0m0s"},
    DateLayout{"datetime-fields-ymdhmsw",  "Yy0M0d0h0m0s0W"},
    DateLayout{"datetime-fields-ymdhmsw",  "0y0M0d0h0m0s0W"},
    DateLayout{"datetime-fields-smhwdmy",  "0s0m0h0W0d0MYy"},
    DateLayout{"datetime-fields-smhdmwy",  "0s0m0h0d0M0WYy"},
    DateLayout{"datetime-fields-smhwdmy",  "0s0m0h0W0d0M0y"},
    DateLayout{"datetime-fields-smhdwmy",  "0s0m0h0d0W0M0y"},
    DateLayout{"datetime-fields-ymdhms-ms", "Yy0M0d0h0m0sTt"},
    DateLayout{"datetime-fields-ymdhm",    "Yy0M0d0h0m"},
    DateLayout{"datetime-fields-mhdmy",    "0m0h0d0MYy"},
    DateLayout{"datetime-fields-ymd",      "Yy0M0d"},
    DateLayout{"datetime-fields-dmy",      "0d0MYy"},
    DateLayout{"datetime-bytes-ymdhms",    "yMdhms"},
    DateLayout{"datetime-bytes-ymdhms",    "yMdhms", true},
    DateLayout{"datetime-bytes-ymdhms",    "nMdhms"},
    DateLayout{"datetime-bytes-smhdmy",    "smhdMy"},
    DateLayout{"datetime-bytes-smhdmy",    "smhdMy", true},
    DateLayout{"datetime-bytes-dmyhms",    "dMyhms"},
    DateLayout{"datetime-bytes-dmyhms",    "dMyhms", true},
    DateLayout{"datetime-bytes-hmsdmy",    "hmsdMy"},
    DateLayout{"datetime-bytes-msdhym",    "msdhyM"},
    DateLayout{"datetime-bytes-msdhym",    "msdhyM", true},
    DateLayout{"datetime-3-registers",     "Mdnhms"},
    DateLayout{"datetime-msp",             "Mdyhms"},
    DateLayout{"datetime-cm",              "MdnhmsTt"},
    DateLayout{"datetime-cm",              "MdyhmsTt"},
    DateLayout{"datetime-iec870",          "xyMdhmUu"},
    DateLayout{"datetime-bytes-ymdhms-4",  "YyMdhm0s"},
    DateLayout{"datetime-bytes-ymdhms-4",  "YyMdhms0"},
    DateLayout{"datetime-bytes-ymdhms-4",  "YyMdhmsx"},
    DateLayout{"datetime-bytes-ymdhms-4",  "YyMdhms0", true},
    DateLayout{"datetime-bytes-ymdhms-4",  "YyMd0hms"},
    DateLayout{"datetime-bytes-ymdwhms",   "yMdWhms0"},
    DateLayout{"datetime-bytes-ymdwhms",   "yMdWhms0", true},
    DateLayout{"datetime-bytes-ymdhms-4",  "0yMd0hms"},
    DateLayout{"datetime-bytes-ymdhms-4",  "0yMdhm0s"},
    DateLayout{"datetime-bytes-smhwdmy",   "smhWdMy0"},
    DateLayout{"datetime-bytes-smhwdmy",   "smhWdMy0", true},
    DateLayout{"datetime-bytes-mdyhms-4", "MdYyhms0"},  DateLayout{"datetime-bytes-mdyhms-4", "MdYyhm0s"},
    DateLayout{"datetime-bytes-dmyhms-4", "dMYyhms0"},  DateLayout{"datetime-bytes-dmyhms-4", "dMYyhm0s"},
    DateLayout{"datetime-fields-ymdhms", "Yy0M0d0h0m0s", true},
    DateLayout{"datetime-fields-ymdhms", "0y0M0d0h0m0s", true},
    DateLayout{"datetime-fields-smhdmy", "0s0m0h0d0M0y", true},
    DateLayout{"datetime-bytes-ymdhm",     "YyMdhm"},
    DateLayout{"datetime-ulp",             "2222Tt"},
    DateLayout{"datetime-ulp",             "2222Ttxx"},
    DateLayout{"datetime-2000",            "2222"},
};
// clang-format on

}  // namespace kzm::ModbusGateway
