# Price and money text tests.
list(APPEND VELORA_MONEY_TEST_SOURCES money/price_text_test.cpp money/price_reading_test.cpp)
