// SPDX-License-Identifier: MIT
#include "output/page/joinedModules.h"

#include <filesystem>
#include <map>
#include <regex>
#include <stdexcept>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace output {

namespace {

const std::regex& importLine() {
    static const std::regex line(
        R"(^import \{ ([\w$]+(?:, [\w$]+)*) \} from '(\.\.?/[\w./-]+)';$)");
    return line;
}

const std::regex& exportLine() {
    static const std::regex line(R"(^export ((?:async )?function|class|const) ([\w$]+)\b.*)");
    return line;
}

/** Puts modules behind those that they import. */
class ModuleJoiner {
public:
    explicit ModuleJoiner(const ModuleText& textOf) : textOf_(textOf) {}

    /** @return the variable that holds the module's exports */
    std::string add(const std::string& name) {
        const auto known = variables_.find(name);
        if (known != variables_.end()) {
            if (known->second.empty()) throw std::logic_error(name + " imports itself in the end");
            return known->second;
        }
        variables_[name];
        const std::string body = scopeOf(name);
        const std::string variable = fmt::format("module{}", ++count_);
        script_ += fmt::format("// {}\nconst {} = (() => {{\n{}}})();\n", name, variable, body);
        return variables_[name] = variable;
    }

    const std::string& script() const { return script_; }

private:
    std::string scopeOf(const std::string& name) {
        const std::string_view text = textOf_(name);
        if (text.empty()) throw std::logic_error("there is no module " + name);
        std::string body;
        std::vector<std::string> exported;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = std::min(text.find('\n', at), text.size());
            body += translated(std::string(text.substr(at, end - at)), name, exported) + "\n";
            at = end + 1;
        }
        return body + fmt::format("return {{ {} }};\n", fmt::join(exported, ", "));
    }

    std::string translated(const std::string& line, const std::string& name,
                           std::vector<std::string>& exported) {
        if (!line.starts_with("import") && !line.starts_with("export")) return line;
        std::smatch parts;
        if (std::regex_match(line, parts, importLine())) {
            const auto folder = std::filesystem::path(name).parent_path();
            const auto path = (folder / parts.str(2)).lexically_normal();
            return fmt::format("const {{ {} }} = {};", parts.str(1), add(path.string()));
        }
        if (std::regex_match(line, parts, exportLine())) {
            exported.push_back(parts.str(2));
            return line.substr(std::string_view("export ").size());
        }
        throw std::logic_error(name + ": cannot be joined: " + line);
    }

    const ModuleText& textOf_;
    std::map<std::string, std::string> variables_;
    std::string script_;
    int count_ = 0;
};

}  // namespace

std::string joinedModules(std::string_view entry, const ModuleText& textOf) {
    ModuleJoiner joiner(textOf);
    joiner.add(std::string(entry));
    const std::string& script = joiner.script();
    if (script.find("</script") != std::string::npos || script.find("<!--") != std::string::npos)
        throw std::logic_error("a module would end the page's script");
    return script;
}

}  // namespace output
