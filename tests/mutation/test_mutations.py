"""Tests which mistakes are made in which lines."""

import unittest

from mutations import mutations

CASES = {
    "    if (a < b) {": ["    if (a <= b) {", "    if (a >= b) {", "    if (!(a < b)) {"],
    "    return a == b;": ["    return a != b;", "    return !(a == b);", "    return {};"],
    "    return true;": ["    return false;"],
    "    m_list.at(i)->Show(x);": ["    ;"],
    "    ++count;": ["    --count;"],
    "    const auto found = a && (b || c);": [
        "    const auto found = a || (b || c);",
        "    const auto found = a && (b && c);",
    ],
    "    int sum = a + f(b - c);": ["    int sum = a - f(b - c);", "    int sum = a + f(b + c);"],
    "constexpr int Most = 16;": ["constexpr int Most = 17;", "constexpr int Most = 15;"],
    "const char Mark = 0x1F; // 2 < 3": ["const char Mark = 32; // 2 < 3", "const char Mark = 30; // 2 < 3"],
    # An initialiser before a condition stays in front of it.
    "    if (int n = f(); n > m) {": ["    if (int n = f(); n >= m) {", "    if (int n = f(); n <= m) {"],
    # The rest of the condition or call is on another line.
    "    if (isOpen &&": ["    if (isOpen ||"],
    "    Show(first,": [],
    # Not operators, numbers or calls.
    "    QVector<int> Values(const Layer& a, Layer&& b, Layer* c);": [],
    "    const auto text = QStringLiteral(\"a < 1\\\" && true\");": [],
    "    const float half = 0.5F;": [],
    "    const int u16 = size;": [],
    "    p->next = q->next;": [],
    # Lines that are not statements, or cannot fail.
    "#include \"a/b.h\"": [],
    "    // if (a < 1) {": [],
    "    Q_ASSERT(a < 1);": [],
    "static_assert(sizeof(int) == 4);": [],
    "    return {};": [],
    "}": [],
    "": [],
}


class Mutations(unittest.TestCase):
    def test_are_those_that_a_line_can_hold(self):
        for line, expected in CASES.items():
            with self.subTest(line):
                self.assertEqual([mutation.line for mutation in mutations(line)], expected)


if __name__ == "__main__":
    unittest.main()
