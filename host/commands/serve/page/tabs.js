// Tabs: one is open; the arrow keys switch between them.
export function openTabs(list) {
  const tabs = [...list.querySelectorAll('[role="tab"]')];
  const open = (chosen) => {
    for (const tab of tabs) {
      tab.setAttribute("aria-selected", tab === chosen);
      tab.tabIndex = tab === chosen ? 0 : -1;
      document.getElementById(tab.getAttribute("aria-controls")).hidden = tab !== chosen;
    }
  };
  list.addEventListener("click", ({ target }) => tabs.includes(target) && open(target));
  list.addEventListener("keydown", (event) => {
    const at = tabs.indexOf(document.activeElement);
    const next = { ArrowRight: at + 1, ArrowLeft: at - 1, Home: 0, End: -1 }[event.key];
    if (next === undefined) return;
    const tab = tabs.at(next % tabs.length);
    open(tab);
    tab.focus();
    event.preventDefault();
  });
  open(tabs[0]);
}
