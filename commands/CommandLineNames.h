// The names of the command line's parser, for headers that only speak of them: what uses them
// includes <CLI/CLI.hpp>, which takes seconds to compile.
#pragma once

namespace CLI {
class App;
class Option;
class ParseError;
class Validator;
}  // namespace CLI
