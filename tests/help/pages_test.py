#!/usr/bin/python3
"""Opens every page of the help's site in headless Chromium, from its folder, wide and narrow, light and dark; and tries
the search and the choice of colours.

    pages_test.py SITE PICTURES

Leaves a picture of each page in the folder PICTURES, to be looked at.
"""
import base64
import pathlib
import sys

sys.dont_write_bytecode = True
sys.path.append(str(pathlib.Path(__file__).parents[1] / "run"))

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

from closing import close

WIDTHS = [1280, 390]
COLOURS = ["light", "dark"]
GROUND = "return getComputedStyle(document.body).backgroundColor"
# What reaches past the side of the window, but for what its own box scrolls or clips.
OVERFLOWING = """return Array.from(document.querySelectorAll("body *"))
  .filter((one) => one.getBoundingClientRect().right > innerWidth + 0.5 && !one.closest(".grid, .skip"))
  .map((one) => one.tagName + " " + one.textContent.slice(0, 40))
  .concat(document.documentElement.scrollWidth > innerWidth ? ["the page"] : [])"""
# What is typed, how many lines down Enter is pressed, and the page that it opens.
SEARCHES = [("vstack", 0, "vstack"), ("Case lookup2", 1, "rgx-case-avlookup2"), ("moving average", 0, "movavg"),
            ("gini", 0, "ginicoeff"), ("rgxmid", 0, "rgx-mid"), ("backcast", 0, "movavg"),
            ("interpolat", 1, "vlinterp2"),
            ("qqqq", 0, "index")]


def browser():
    options = webdriver.ChromeOptions()
    for one in ["--headless=new", "--no-sandbox", "--disable-gpu", "--hide-scrollbars"]:
        options.add_argument(one)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


def look(driver, width, colour):
    driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                           {"width": width, "height": 900, "deviceScaleFactor": 1, "mobile": False})
    driver.execute_cdp_cmd("Emulation.setEmulatedMedia",
                           {"features": [{"name": "prefers-color-scheme", "value": colour}]})


def looks(driver, site, pictures):
    for width in WIDTHS:
        for colour in COLOURS:
            look(driver, width, colour)
            folder = pictures / f"{width}-{colour}"
            folder.mkdir(parents=True, exist_ok=True)
            grounds = set()
            for page in sorted(site.glob("*.html")):
                driver.get(page.as_uri())
                shot = driver.execute_cdp_cmd("Page.captureScreenshot", {"captureBeyondViewport": True})
                (folder / f"{page.stem}.png").write_bytes(base64.b64decode(shot["data"]))
                grounds.add(driver.execute_script(GROUND))
                yield f"{page.name}, {width}, {colour}", [*driver.execute_script(OVERFLOWING),
                                                          *(line["message"] for line in driver.get_log("browser"))], []
            yield f"grounds, {width}, {colour}", len(grounds), 1


def searches(driver, site):
    look(driver, WIDTHS[0], "light")
    for typed, down, opened in SEARCHES:
        driver.get((site / "index.html").as_uri())
        driver.find_element(By.TAG_NAME, "body").send_keys("/")
        box = driver.switch_to.active_element
        box.send_keys(typed, *[Keys.ARROW_DOWN] * down, Keys.ENTER)
        yield f"search for {typed}", pathlib.Path(driver.current_url).stem, opened
    driver.get((site / "index.html").as_uri())
    light = driver.execute_script(GROUND)
    driver.find_element(By.ID, "colours").click()
    driver.get((site / "vstack.html").as_uri())
    yield "dark is remembered", driver.execute_script(GROUND) != light, True
    driver.find_element(By.ID, "colours").click()
    yield "and left again", driver.execute_script(GROUND), light
    driver.get((site / "vstack.html").as_uri())
    driver.find_element(By.TAG_NAME, "body").send_keys(Keys.TAB)
    yield "the first key leads past the top", driver.switch_to.active_element.get_attribute("class"), "skip"


def main():
    site, pictures = (pathlib.Path(one).resolve() for one in sys.argv[1:])
    driver = browser()
    try:
        cases = [*looks(driver, site, pictures), *searches(driver, site)]
    finally:
        driver.quit()
    close(cases)


if __name__ == "__main__":
    main()
