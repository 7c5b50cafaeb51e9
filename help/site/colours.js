// Light or dark: as the system has it, until the reader chooses; the choice holds for all pages.
(function () {
  "use strict";
  const key = "quillmere-colours";
  const system = matchMedia("(prefers-color-scheme: dark)");
  let chosen = null;
  try {
    chosen = localStorage.getItem(key);
  } catch (error) { /* a browser that keeps nothing for pages from a folder */ }

  function isDark() {
    return chosen ? chosen === "dark" : system.matches;
  }

  function show() {
    document.getElementById("dark").media = isDark() ? "screen" : "not all";
    const button = document.getElementById("colours");
    if (!button) return;
    button.textContent = isDark() ? "Light" : "Dark";
    button.setAttribute("aria-label", isDark() ? "Show light colours" : "Show dark colours");
  }

  show();
  system.addEventListener("change", show);
  document.addEventListener("DOMContentLoaded", function () {
    const button = document.getElementById("colours");
    button.hidden = false;
    show();
    button.addEventListener("click", function () {
      chosen = isDark() ? "light" : "dark";
      try {
        localStorage.setItem(key, chosen);
      } catch (error) { /* it holds for this page then */ }
      show();
    });
  });
})();
