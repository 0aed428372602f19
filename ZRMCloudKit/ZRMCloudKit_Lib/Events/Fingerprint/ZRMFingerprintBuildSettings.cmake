# The key as eight bytes of C++. It is given as text, or in hexadecimal where it is none.
string(LENGTH "${ZRM_DEVICE_NAME_XOR_KEY}" ZRM_KEY_LENGTH)
if(ZRM_KEY_LENGTH EQUAL 8)
  string(HEX "${ZRM_DEVICE_NAME_XOR_KEY}" ZRM_KEY_DIGITS)
elseif(ZRM_DEVICE_NAME_XOR_KEY MATCHES "^[0-9A-Fa-f]+$" AND ZRM_KEY_LENGTH EQUAL 16)
  set(ZRM_KEY_DIGITS "${ZRM_DEVICE_NAME_XOR_KEY}")
else()
  message(FATAL_ERROR
    "ZRM_DEVICE_NAME_XOR_KEY is to be 8 characters, or 8 bytes as 16 hexadecimal digits")
endif()
string(REGEX REPLACE "(..)" "0x\\1, " ZRM_DEVICE_NAME_XOR_KEY_BYTES "${ZRM_KEY_DIGITS}")
string(REGEX REPLACE ", $" "" ZRM_DEVICE_NAME_XOR_KEY_BYTES "${ZRM_DEVICE_NAME_XOR_KEY_BYTES}")
