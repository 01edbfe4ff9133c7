#!/usr/bin/python3
"""A guest's phone in headless Chromium: opens the page, joins with a name and the PIN, searches,
asks for a song and waits to see it in the queue. Exit 0 when it did, 77 when Chromium cannot
start here, 1 on any other failure; what it saw goes to standard output."""

import os
import sys

from selenium import webdriver
from selenium.common.exceptions import WebDriverException
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.support import expected_conditions as seen
from selenium.webdriver.support.ui import WebDriverWait


def start_browser():
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                     "--window-size=412,915", "--lang=en-US"):
        options.add_argument(argument)
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


def main(address, pin, name, search, title):
    try:
        browser = start_browser()
    except WebDriverException as error:
        print(f"Chromium cannot start: {error.msg}")
        return 77
    try:
        wait = WebDriverWait(browser, 20)
        browser.get(address)
        wait.until(seen.visibility_of_element_located((By.ID, "join")))
        browser.find_element(By.ID, "name").send_keys(name)
        browser.find_element(By.ID, "pin").send_keys(pin)
        browser.find_element(By.CSS_SELECTOR, "#join button").click()
        wait.until(seen.visibility_of_element_located((By.ID, "guest")))
        print("hello:", browser.find_element(By.ID, "hello").text)

        # The page renders the hits and the queue anew on every answer, so they are read and
        # clicked by scripts that run at one moment, never through elements kept across answers.
        browser.find_element(By.ID, "search").send_keys(search)
        wait.until(lambda b: b.execute_script(
            "const hits = document.querySelectorAll('#hits li .what');"
            "return hits.length === 1 && hits[0].textContent.includes(arguments[0]);", title))
        print("found:", browser.execute_script("return document.querySelector('#hits li .what').textContent;"))
        browser.execute_script("document.querySelector('#hits li button').click();")
        wait.until(lambda b: b.execute_script(
            "return [...document.querySelectorAll('#queue li.mine')]"
            ".some(line => line.textContent.includes(arguments[0]));", title))
        print("message:", browser.find_element(By.ID, "message").text)
        print("place:", browser.find_element(By.ID, "place").text)
        capture = os.environ.get("SONGWEAVER_CAPTURE_DIR")
        if capture:
            browser.save_screenshot(os.path.join(capture, "guest-page.png"))
        print("markup elements in the queue:", len(browser.find_elements(By.CSS_SELECTOR, "#queue b")))
        # Answers such as 401 before joining are the page's flow; a script error is a fault.
        errors = [entry for entry in browser.get_log("browser")
                  if entry["level"] == "SEVERE" and "Failed to load resource" not in entry["message"]]
        print("script errors:", len(errors))
        for entry in errors:
            print("  ", entry["message"])
        return 0 if not errors else 1
    except Exception as error:  # what the page showed helps more than the trace
        print("failed:", type(error).__name__, error)
        print("page message:", browser.find_element(By.ID, "message").text)
        return 1
    finally:
        browser.quit()


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:6]))
