# Monetary value classes: templates, price and money types, compact prices.
list(APPEND VELORA_MONEY_TEST_SOURCES money/monetary_test.cpp money/prices_test.cpp money/compact_price_test.cpp
  money/price_conversion_test.cpp)
