# FIX parsing and integrity: the scanner, the parser and its map, and the message-text helpers.
list(APPEND VELORA_FIX_SOURCES fix/FixMessageText.cpp fix/FixParser.cpp fix/FixIntegrity.cpp)
