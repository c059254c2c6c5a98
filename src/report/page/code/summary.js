// What to read first: the verdict as a word, a picture and a colour; the answer; when something was
// noticed; what explains it best, and what else would.
import { el, svg } from './dom.js';
import { arrows, number, percent, plural, undated } from './format.js';
import { badge } from './badge.js';

const verdicts = {
  healthy: { word: 'Healthy', path: 'M5 12.5l4.5 4.5L19 7.5' },
  explained: { word: 'Fault found and explained', path: 'M12 5.5v8M12 17.5v.8' },
  unexplained: { word: 'Fault noticed, not explained', path: 'M8.6 9.2a3.4 3.4 0 1 1 4.9 3.1c-1 .5-1.5 1.1-1.5 2.2M12 18v.6' },
  stopped: { word: 'Stopped before the end', path: 'M8 8h8v8H8z' },
};

export function summarySection(run, store) {
  const { outcome } = run;
  const own = verdicts[outcome.verdict] ?? { word: outcome.verdict, path: '' };
  return el('section', { id: 'summary', class: `card summary ${outcome.verdict}`, 'aria-labelledby': 'verdict' },
    el('div', { class: 'headline' },
      svg('svg', { viewBox: '0 0 24 24', class: 'sign', 'aria-hidden': 'true' }, svg('path', { d: own.path })),
      el('div', null, el('h1', { id: 'verdict', 'data-verdict': outcome.verdict }, own.word), el('p', { class: 'hint' }, subtitle(run)))),
    outcome.stopped && el('p', { class: 'stopped-by' }, `The run was stopped: ${outcome.stopped}.`),
    el('div', { class: 'answer' }, outcome.answer.map((sentence) => el('p', null, arrows(sentence)))),
    el('dl', { class: 'facts' }, facts(run)),
    explanations(run, store),
    told('Told of the data', outcome.notes.map(arrows)));
}

function subtitle(run) {
  const length = run.time[run.lastStep] - run.time[0];
  const long = run.words.long(length);
  return `Plant ${run.plant.name}, ${plural(run.time.length, 'step')}${run.plant.discrete ? '' : `, ${number(length)} s${long && ` (${long})`}`}`;
}

function facts(run) {
  const { noticed, pastUse } = run.outcome;
  const fact = (name, ...value) => el('div', null, el('dt', null, name), el('dd', null, value));
  const sides = (noticed?.alarms ?? []).map((a) => `${a.measure} too ${a.side}`).join(', ');
  return [
    noticed ? fact('Noticed', el('b', { id: 'noticed' }, run.words.at(noticed.time)), !run.plant.discrete && ` at step ${noticed.step}`, sides && el('span', { class: 'sub' }, sides)) : fact('Noticed', 'nothing'),
    fact('Alarms', el('b', null, run.alarms.length.toLocaleString('en')), el('span', { class: 'sub' }, plural(run.diagnoses.length, 'diagnosis', 'diagnoses'))),
    fact('Followed at the end', el('b', null, String(run.followed[run.lastStep] ?? 0)), el('span', { class: 'sub' }, `${run.followed[run.lastStep] === 1 ? 'candidate' : 'candidates'} of ${plural(run.hypotheses.filter((h) => h.alive).length, 'hypothesis', 'hypotheses')}`)),
    pastUse.length ? fact('Grown past use', el('b', null, run.words.at(pastUse[0].time)), el('span', { class: 'sub' }, `bounds of ${pastUse.map((p) => p.measure).join(', ')}: little is noticed from there on`)) : null,
  ];
}

const othersUpTo = 4;

function explanations(run, store) {
  const failed = run.byInterest.filter((h) => h.rank > 0 || h.unknown || h.failures.length);
  const alive = failed.filter((h) => h.alive);
  const gone = failed.filter((h) => !h.alive);
  if (!failed.length) return null;
  const rest = alive.length - 1 - othersUpTo;
  return el('div', { class: 'explanations' },
    alive.length > 0 && [el('h2', null, 'What explains it best'), story(run, store, alive[0], true)],
    alive.length > 1 && [el('h2', null, 'What else would explain it'), el('ol', { class: 'stories' }, alive.slice(1, 1 + othersUpTo).map((h) => el('li', null, story(run, store, h, false))))],
    rest > 0 && el('p', { class: 'hint' }, el('a', { href: '#hypotheses' }, `and ${plural(rest, 'more', 'more')} in the table of hypotheses`)),
    gone.length > 0 && told(`${plural(gone.length, 'explanation')} no longer followed`, gone.slice(0, 50).map((h) => arrows(h.summary)), `and ${gone.length - 50} more`));
}

function story(run, store, hypothesis, best) {
  const dates = datesOf(run, hypothesis);
  const choose = () => {
    store.follow(hypothesis.index);
    document.getElementById('timeline')?.scrollIntoView();
  };
  return el('div', { class: best ? 'story best' : 'story' },
    el('div', { class: 'what' }, badge(hypothesis), ' ', el('span', { class: 'name' }, arrows(dates ? undated(hypothesis.summary) : hypothesis.summary)), ' ', hypothesis.unknown && el('span', { class: 'tag' }, 'unknown mode')),
    el('div', { class: 'how' }, hypothesis.probability > 0 && likely(hypothesis.probability), dates && el('span', { class: 'dates' }, dates),
      el('span', null, plural(hypothesis.rank, 'failure')),
      el('button', { type: 'button', class: 'plain no-print', onclick: choose }, 'Show in the charts')));
}

function likely(probability) {
  return el('span', { class: 'likely', title: `probability ${probability}` },
    el('span', { class: 'bar', 'aria-hidden': 'true' }, el('span', { style: `width: ${probability * 100}%` })), el('span', { class: 'unseen' }, 'probability '), percent(probability));
}

/** When its failures happened, as far as the diagnoses say. */
function datesOf(run, hypothesis) {
  const { failures } = hypothesis;
  const named = failures.length > 1 ? (failure) => `${failure.component} ` : () => '';
  return failures.slice(0, 4).map((failure) => named(failure) + run.words.between(failure.earliest, failure.latest)).join(', ');
}

function told(title, lines, more) {
  if (!lines.length) return null;
  const list = el('ul', null, lines.map((line) => el('li', null, line)), more && lines.length >= 50 ? el('li', null, more) : null);
  return el('details', { open: lines.length <= 3 }, el('summary', null, title), list);
}
