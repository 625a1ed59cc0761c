// The words of a command line, one after the other: options, which begin with "-", and operands. What follows
// "--" is an operand, and so is "-".
//
//   for (Arguments arguments(argc, argv); arguments.next();) {
//       if (arguments.isOperand()) file = arguments.text();
//       else if (arguments.is("--help")) help = true;
//       else if (arguments.isValued("--range")) error = arguments.readInteger(0, 100, range);
//       else error = "unknown option " + arguments.text();
//   }
#pragma once

#include <optional>
#include <string>
#include <string_view>

class Arguments {
public:
    Arguments(int argc, const char* const* argv) : m_count(argc), m_arguments(argv) {}

    // Steps to the next option or operand; false behind the last one.
    bool next();

    const std::string& text() const { return m_text; }
    bool isOperand() const { return m_onlyOperands || m_text == "-" || !m_text.starts_with('-'); }
    bool is(std::string_view option) const { return m_text == option; }

    // Whether this is OPTION=VALUE, or OPTION with its VALUE as the next word.
    bool isValued(std::string_view option) const {
        return m_text.starts_with(option) && (m_text.size() == option.size() || m_text[option.size()] == '=');
    }

    // The value of such an option; none when it is the last word.
    std::optional<std::string> value();

    // These read it, and give the error, empty without one. The value of readText is not empty, `what` it
    // should be is named in the error.
    std::string readText(const char* what, std::optional<std::string>& place);
    std::string readInteger(int least, int greatest, std::optional<int>& place);
    std::string readNumber(int least, int greatest, std::optional<double>& place);

private:
    std::string name() const { return m_text.substr(0, m_text.find('=')); }
    template <class Number>
    std::string readWithin(const char* what, int least, int greatest, std::optional<Number>& place);

    int m_count;
    const char* const* m_arguments;
    int m_position = 0;
    std::string m_text;
    bool m_onlyOperands = false;
};
