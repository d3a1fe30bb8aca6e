# Monetary value classes: the fixed-point templates, the five price and money types, compact prices.
list(APPEND VELORA_MONEY_SOURCES
  money/Monetary.cpp
  money/Money.cpp
  money/Price.cpp
  money/SignedPrice.cpp
  money/PricePrecise.cpp
  money/CompactPrice.cpp money/PriceConversion.cpp)
