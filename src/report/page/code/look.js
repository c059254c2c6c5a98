// Colours and marks. A hypothesis has a colour (of Okabe and Ito's palette, whose colours stay apart for
// colour-blind readers), a line style and a number, so that colour never tells anything alone. Colours
// are variables of the style sheet: light, dark and print each have their own.

const dashes = [[], [9, 4], [2, 3], [9, 3, 2, 3]];
const colours = 6;

/** How the hypothesis at a place of the order of interest is drawn. */
export const lookOf = (place) => ({ colour: `--h${place % colours}`, dash: dashes[(place + Math.floor(place / 12)) % dashes.length] });

let cache = null;

/** Forgets the colours, after a change of theme. */
export const forgetColours = () => (cache = null);

/** A colour of the style sheet, for drawing on a canvas. */
export function colour(name) {
  cache ??= { style: getComputedStyle(document.documentElement), known: new Map() };
  if (!cache.known.has(name)) cache.known.set(name, cache.style.getPropertyValue(name).trim());
  return cache.known.get(name);
}

export const canvasFont = (size, weight = 400) => `${weight} ${size}px system-ui, -apple-system, "Segoe UI", "Liberation Sans", sans-serif`;
