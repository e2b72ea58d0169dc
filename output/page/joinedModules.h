// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace output {

/** The text of a module by its name, "track/grid.js"; nothing when there is none. */
using ModuleText = std::function<std::string_view(std::string_view name)>;

/** One script of a module and all that it imports, for a page that loads no other file. Each
 *  module keeps its own scope.
 *
 *  Modules import by `import { a, b } from './name.js';`, each on a line of its own before the
 *  rest, and export by `export function`, `export async function`, `export class` or
 *  `export const`, one name at a time.
 *  @throws std::logic_error for any other import or export, a module that is not there, modules
 *          that import each other, and a text that would end the script in a page */
std::string joinedModules(std::string_view entry, const ModuleText& textOf);

}  // namespace output
