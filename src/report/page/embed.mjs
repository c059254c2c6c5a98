// Writes the page as a C++ source that defines reportPage():  node embed.mjs PAGE OUTPUT
import { readFileSync, writeFileSync } from 'node:fs';

const [page, output] = process.argv.slice(2);
const bytes = readFileSync(page);
const perLine = 100;

/** Octal escapes of three digits end by themselves, unlike hexadecimal ones. */
const escaped = (byte) =>
  byte === 0x22 || byte === 0x5c || byte === 0x3f || byte < 0x20 || byte > 0x7e ? `\\${byte.toString(8).padStart(3, '0')}` : String.fromCharCode(byte);

const lines = [];
for (let i = 0; i < bytes.length; i += perLine) lines.push(`    "${[...bytes.subarray(i, i + perLine)].map(escaped).join('')}"`);
writeFileSync(output, `// Made by scripts/build-page from src/report/page/.
#include "report/page.h"

std::string_view reportPage() {
    static constexpr std::string_view page =
${lines.join('\n')};
    return page;
}
`);
