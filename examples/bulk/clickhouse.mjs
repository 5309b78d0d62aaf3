// clickhouse.mjs LOG: has ClickHouse decode the lines of a trace by running "bci decode --filter" itself, load the rows
// by the definitions that "bci gen" prints, and answer questions about them. Prints what duckdb.mjs prints.
import { execFileSync } from 'node:child_process';
import { mkdirSync, mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join, resolve } from 'node:path';
import { Session } from 'chdb';
import { print } from './print.mjs';

const log = `file('${resolve(process.argv[2])}', LineAsString, 'line String')`;
const questions = {
  'rows': `
    SELECT count() FROM bci_records`,
  'damages per code': `
    SELECT damage.code, count() FROM bci_records ARRAY JOIN damages AS damage GROUP BY ALL`,
  // The rendering is the last word of a line.
  'records per class': `
    SELECT JSONExtract(bciDecode(splitByChar(' ', line)[-1]), 'class', 'Nullable(String)'), count()
    FROM ${log} GROUP BY ALL`,
  'records per class and minute': `
    SELECT class, substring(time, 1, 16), count() FROM bci_records GROUP BY ALL`,
  'values of mainState in audit confirms': `
    SELECT numbers['mainState'], count() FROM bci_records WHERE class = 'BciAuditCfm' GROUP BY ALL`,
};

const definitions = execFileSync('bci', ['gen', 'sql-clickhouse'], { encoding: 'utf8' });
const directory = mkdtempSync(join(tmpdir(), 'bci-'));
try {
  // The table function executable() runs what is in user_scripts, and nothing else.
  mkdirSync(join(directory, 'user_scripts'));
  writeFileSync(join(directory, 'user_scripts', 'bciRows'), '#!/bin/sh\nexec bci decode --filter --field line\n', { mode: 0o755 });
  // The function bciDecode() is part of the configuration, as "bci gen" has it in a comment.
  const functions = definitions.match(/^-- <functions>$[^]*^-- <\/functions>$/m)[0].replace(/^-- /gm, '');
  writeFileSync(join(directory, 'bci_function.xml'), functions);
  writeFileSync(join(directory, 'config.xml'), `
    <clickhouse>
      <path>${directory}</path>
      <user_scripts_path>${directory}/user_scripts</user_scripts_path>
      <user_defined_executable_functions_config>${directory}/*_function.xml</user_defined_executable_functions_config>
    </clickhouse>`);
  const session = new Session(directory, { connectionArgs: [`--config-file=${directory}/config.xml`] });
  const ask = (query) =>
    session.query(query, 'JSONCompactEachRow').split('\n').filter(Boolean).map((row) => JSON.parse(row));

  session.query(definitions);
  const [[columns]] = ask(`
    SELECT arrayStringConcat(groupArray('\`' || name || '\` ' || type), ', ') FROM
      (SELECT * FROM system.columns WHERE database = currentDatabase() AND table = 'bci_records' ORDER BY position)`);
  session.query(`
    INSERT INTO bci_records
    SELECT * FROM executable('bciRows', JSONEachRow, '${columns}', (SELECT line FROM ${log}))`);
  for (const [question, query] of Object.entries(questions)) {
    print(question, ask(query));
  }
  session.close();
} finally {
  rmSync(directory, { recursive: true });
}
