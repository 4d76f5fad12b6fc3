#include <gtest/gtest.h>

#include "link/PortSettings.h"
#include "link/SerialPort.h"

namespace sb {
namespace {

TEST(ParsePortSettings, ReadsTheFourFieldsWithOrWithoutBlanksAndRefusesAnIncompleteOrImpossibleText) {
    const std::pair<const char*, const char*> cases[] = {
        {"300, N, 8, 1", "300 N 8 1"}, {"9600,e,7,2", "9600 E 7 2"}, {" 1200 ,O, 5 , 1 ", "1200 O 5 1"}};
    for (const auto& [text, fields] : cases) {
        const PortSettings s = ParsePortSettings(text);
        const std::string read = std::to_string(s.BaudRate) + " " + s.Parity + " " + std::to_string(s.DataBits);
        EXPECT_EQ(read + " " + std::to_string(s.StopBits), fields) << text;
    }
    for (const char* text :
         {"", "300", "300, N, 8", "300, N, 8, 1, 1", "300, X, 8, 1", "300, NN, 8, 1", "0, N, 8, 1", "-300, N, 8, 1",
          "300x, N, 8, 1", "300, N, 9, 1", "300, N, 8, 3", "300, N, 8, 1.5", "300, , 8, 1"})
        EXPECT_THROW(ParsePortSettings(text), PortError) << text;
}

}  // namespace
}  // namespace sb
