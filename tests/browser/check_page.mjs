// Loads a result page of lfreport in headless Chromium and checks it as a
// reader would use it: no error on the console, every plot with one mark per
// bus, branch or iteration row, and a table that sorts on a click.
//   node check_page.mjs PAGE.html
import puppeteer from 'puppeteer-core';

const page_file = process.argv[2];
const failures = [];
const fail = (what) => failures.push(what);

const browser = await puppeteer.launch({
  executablePath: process.env.CHROMIUM || '/usr/bin/chromium',
  headless: true,
  args: ['--no-sandbox', '--disable-gpu', '--disable-dev-shm-usage'],
});
try {
  const page = await browser.newPage();
  page.on('console', (m) => { if (m.type() === 'error') fail(`console error: ${m.text()}`); });
  page.on('pageerror', (e) => fail(`page error: ${e.message}`));
  page.on('requestfailed', (r) => fail(`request failed: ${r.url()}`));
  page.on('request', (r) => { if (!r.url().startsWith('file:')) fail(`network request: ${r.url()}`); });
  await page.goto(`file://${page_file}`, { waitUntil: 'load' });

  const counts = await page.evaluate(() => {
    const marks = (id) => document.querySelectorAll(`#${id} .mark`).length;
    const rows = (id) => document.querySelectorAll(`#${id} tbody tr`).length;
    const solved = [...document.querySelectorAll('#table-buses tbody tr')]
      .filter((r) => r.cells[5].textContent !== '').length;
    const series = [...document.querySelectorAll('#table-branches tbody tr')]
      .filter((r) => r.cells[0].textContent !== r.cells[1].textContent).length;
    return {
      vm: marks('plot-vm'), va: marks('plot-va'), loading: marks('plot-loading'),
      convergence: marks('plot-convergence'), solved, series,
      transformers: rows('table-transformers'),
      iterations: Number(document.querySelector('#plot-convergence').dataset.marks),
      summary: document.querySelector('#summary').textContent,
    };
  });
  if (counts.solved === 0) fail('no bus with a voltage in the bus table');
  if (counts.vm !== counts.solved) fail(`voltage plot: ${counts.vm} marks for ${counts.solved} buses`);
  if (counts.va !== counts.solved) fail(`angle plot: ${counts.va} marks for ${counts.solved} buses`);
  const branches = counts.series + counts.transformers;
  if (counts.loading !== branches) fail(`loading plot: ${counts.loading} marks for ${branches} branches`);
  const rows = (counts.summary.match(/in (\d+) iteration/) || [])[1];
  if (counts.convergence === 0 || counts.convergence < Number(rows) + 1)
    fail(`convergence plot: ${counts.convergence} marks for ${rows} iterations`);

  // Sorting: a click on the voltage heading orders the buses by rising
  // voltage, a second click by falling voltage.
  const voltages = () => page.$$eval('#table-buses tbody tr', (trs) =>
    trs.map((r) => r.cells[5].textContent).filter((t) => t !== '').map(Number));
  const heading = (await page.$$('#table-buses th'))[5];
  await heading.click();
  const up = await voltages();
  if (up.some((v, k) => k > 0 && v < up[k - 1])) fail('one click does not sort the voltages upward');
  await heading.click();
  const down = await voltages();
  if (down.some((v, k) => k > 0 && v > down[k - 1])) fail('two clicks do not sort them downward');
} finally {
  await browser.close();
}
if (failures.length) {
  for (const f of failures) console.log(`FAIL ${f}`);
  console.log(`0 passed, ${failures.length} failed`);
  process.exit(1);
}
console.log('page checked: console clean, one mark per bus, branch and iteration, sorting works');
