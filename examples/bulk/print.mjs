// Prints the answers to a question, in an order that no database decides.
export function print(question, rows) {
  const lines = rows.map((row) => [question, ...row.map((value) => value ?? '-')].join('\t'));
  process.stdout.write(lines.sort().join('\n') + '\n');
}
