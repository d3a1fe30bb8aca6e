# Price and money text: the amount writers and readers.
list(APPEND VELORA_MONEY_SOURCES money/PriceText.cpp money/PriceReading.cpp)
