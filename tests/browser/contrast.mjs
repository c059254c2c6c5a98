// Texts that do not stand out from their ground: the contrast of the Web Content Accessibility Guidelines,
// 4.5 for what is small and 3 for what is large, computed in the page.

/** One line for each text in sight whose contrast is too weak. */
export const weakTexts = (page) => page.evaluate(() => {
  const canvas = document.createElement('canvas').getContext('2d', { willReadFrequently: true });
  /** Any colour of a style, as four numbers; the canvas knows all ways to write one. */
  const read = (text) => {
    canvas.clearRect(0, 0, 1, 1);
    canvas.fillStyle = text;
    canvas.fillRect(0, 0, 1, 1);
    const [r, g, b, a] = canvas.getImageData(0, 0, 1, 1).data;
    return [r, g, b, a / 255];
  };
  const over = (top, below) => [0, 1, 2].map((i) => top[i] * top[3] + below[i] * (1 - top[3])).concat(1);
  const groundOf = (node) => {
    const layers = [];
    for (let own = node; own; own = own.parentElement) {
      const colour = read(getComputedStyle(own).backgroundColor);
      if (colour[3] > 0) layers.push(colour);
      if (colour[3] > 0.99) break;
    }
    return layers.reverse().reduce((below, top) => over(top, below), [255, 255, 255, 1]);
  };
  const luminance = (colour) => {
    const [r, g, b] = colour.slice(0, 3).map((c) => (c / 255 <= 0.03928 ? c / 255 / 12.92 : ((c / 255 + 0.055) / 1.055) ** 2.4));
    return 0.2126 * r + 0.7152 * g + 0.0722 * b;
  };
  const ratio = (one, other) => {
    const [low, high] = [luminance(one), luminance(other)].sort((a, b) => a - b);
    return (high + 0.05) / (low + 0.05);
  };
  const weak = [];
  for (const node of document.querySelectorAll('body *')) {
    const own = [...node.childNodes].filter((child) => child.nodeType === 3).map((child) => child.data.trim()).join('');
    if (!own || !node.checkVisibility({ visibilityProperty: true }) || node.closest('.unseen, option, :disabled, title, .skip, .arrow')) continue;
    const style = getComputedStyle(node);
    const isSvg = node instanceof SVGElement;
    const box = isSvg && node.closest('g')?.querySelector(':scope > rect');
    const ground = box ? over(read(getComputedStyle(box).fill), groundOf(node)) : groundOf(node);
    const size = parseFloat(style.fontSize);
    const needed = size >= 24 || (size >= 18.66 && Number(style.fontWeight) >= 700) ? 3 : 4.5;
    const found = ratio(over(read(isSvg ? style.fill : style.color), ground), ground);
    if (found < needed) weak.push(`${found.toFixed(2)}: ${own.slice(0, 40)} (${node.className.baseVal ?? node.className})`);
  }
  return weak;
});
