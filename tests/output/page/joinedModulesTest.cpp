// SPDX-License-Identifier: MIT
#include "output/page/joinedModules.h"

#include <map>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace output {
namespace {

using testing::HasSubstr;
using testing::Not;

class JoinedModules : public testing::Test {
protected:
    std::string join(const std::string& entry) {
        return joinedModules(entry, [this](std::string_view name) -> std::string_view {
            const auto found = modules_.find(std::string(name));
            return found == modules_.end() ? std::string_view() : found->second;
        });
    }

    /** Whether it is refused. @return the reason; empty when it is not */
    std::string refusal(const std::string& entry) {
        try {
            join(entry);
        } catch (const std::logic_error& error) {
            return error.what();
        }
        return {};
    }

    std::map<std::string, std::string> modules_;
};

TEST_F(JoinedModules, KeepsEachModuleInAScopeOfItsOwnBehindWhatItImports) {
    modules_ = {{"a/main.js", "import { one, Two } from './part.js';\nuse(one, Two);\n"},
                {"a/part.js", "const hidden = 1;\nexport const one = hidden;\n"
                              "export class Two {\n}\n"}};
    EXPECT_EQ(join("a/main.js"), "// a/part.js\n"
                                 "const module1 = (() => {\n"
                                 "const hidden = 1;\nconst one = hidden;\nclass Two {\n}\n"
                                 "return { one, Two };\n"
                                 "})();\n"
                                 "// a/main.js\n"
                                 "const module2 = (() => {\n"
                                 "const { one, Two } = module1;\nuse(one, Two);\n"
                                 "return {  };\n"
                                 "})();\n");
}

TEST_F(JoinedModules, TakesAModuleOnceHoweverManyImportIt) {
    modules_ = {{"main.js", "import { b } from './x/b.js';\nimport { c } from './x/c.js';\n"},
                {"x/b.js", "import { c } from './c.js';\nexport function b() { return c; }\n"},
                {"x/c.js", "import { d } from '../d.js';\nexport async function c() { d(); }\n"},
                {"d.js", "export function d() {}\n"}};
    const std::string script = join("main.js");
    EXPECT_EQ(script.find("// x/c.js"), script.rfind("// x/c.js"));
    EXPECT_LT(script.find("// d.js"), script.find("// x/c.js"));
    EXPECT_LT(script.find("// x/c.js"), script.find("// x/b.js"));
    EXPECT_THAT(script, HasSubstr("return { c };"));
}

TEST_F(JoinedModules, RefusesWhatItCannotJoin) {
    const std::vector<std::string> lines = {"import part from './b.js';",
                                            "import * as part from './b.js';",
                                            "import { a as b } from './b.js';",
                                            "import './b.js';",
                                            "import { b } from 'https://example.org/b.js';",
                                            "import { a,",
                                            "export default 3;",
                                            "export { a };",
                                            "export let a = 3;",
                                            "export * from './b.js';"};
    for (const std::string& line : lines) {
        modules_ = {{"a.js", line + "\n"}, {"b.js", "export const b = 1;\n"}};
        EXPECT_THAT(refusal("a.js"), HasSubstr("a.js: cannot be joined: " + line));
    }
}

TEST_F(JoinedModules, RefusesAModuleThatIsNotThere) {
    modules_ = {{"a.js", "import { b } from './b.js';\n"}};
    EXPECT_EQ(refusal("a.js"), "there is no module b.js");
}

TEST_F(JoinedModules, RefusesModulesThatImportEachOther) {
    modules_ = {{"a.js", "import { b } from './b.js';\n"},
                {"b.js", "import { a } from './a.js';\n"}};
    EXPECT_EQ(refusal("a.js"), "a.js imports itself in the end");
}

TEST_F(JoinedModules, RefusesATextThatWouldEndTheScript) {
    for (const char* text : {"const a = '</script>';\n", "const a = '<!--';\n"}) {
        modules_ = {{"a.js", text}};
        EXPECT_EQ(refusal("a.js"), "a module would end the page's script");
    }
}

}  // namespace
}  // namespace output
