// duckdb.mjs ROWS: loads rows of "bci decode" into DuckDB, by the definitions that "bci gen" prints, and answers
// questions about them. Prints lines of tab-separated values: the question, what is counted, how many.
import { execFileSync } from 'node:child_process';
import { DuckDBInstance } from '@duckdb/node-api';
import { print } from './print.mjs';

const questions = {
  'rows': `
    SELECT count(*) FROM bci_records`,
  'damages per code': `
    SELECT damage.code, count(*) FROM (SELECT unnest(damages) AS damage FROM bci_records) GROUP BY ALL`,
  'records per class': `
    SELECT class, count(*) FROM bci_records GROUP BY ALL`,
  'records per class and minute': `
    SELECT class, substr(time, 1, 16), count(*) FROM bci_records GROUP BY ALL`,
  'values of mainState in audit confirms': `
    SELECT numbers['mainState'], count(*) FROM bci_records WHERE class = 'BciAuditCfm' GROUP BY ALL`,
};

const rows = process.argv[2];
const instance = await DuckDBInstance.create();
const database = await instance.connect();
await database.run(execFileSync('bci', ['gen', 'sql-duckdb'], { encoding: 'utf8' }));
await database.run('INSERT INTO bci_records SELECT * FROM bci_rows($1)', [rows]);
for (const [question, query] of Object.entries(questions)) {
  const result = await database.runAndReadAll(query);
  print(question, result.getRows());
}
